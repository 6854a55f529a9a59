#pragma once

#include "core/deletion/Deleter.h"
#include "core/safety/Safety.h"
#include "platform/fake/FakeAdminRunner.h"
#include "support/TempTree.h"

#include <gtest/gtest.h>
#include <memory>

namespace nubo::test {

/// A temporary world for deletions: a home folder (so the gate has its protected places) and a
/// "work" folder of things to delete, in a tree that can list everything, so a test can prove
/// that nothing but the given items disappeared.
class DeletionFixture : public ::testing::Test, protected TempTree
{
protected:
    void SetUp() override;

    /// Runs the batch through the real deleter.
    [[nodiscard]] DeletionResult run(const QList<DeletionItem>& items, bool allowAdmin);

    std::unique_ptr<Safety> m_safety;
    FakeAdminRunner m_admin;
    std::unique_ptr<Deleter> m_deleter;
};

} // namespace nubo::test
