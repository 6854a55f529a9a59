#pragma once

#include <QTest>

namespace nubo::test {

/// Runs the event loop until `condition` holds, for at most `timeoutMs`; true when it held. Qt's
/// QTRY_ macros report to Qt Test's own log, which GoogleTest never reads, so a test waits with
/// this and asserts on the answer: `ASSERT_TRUE(eventually([&] { return done; }))`.
template <typename Condition> [[nodiscard]] bool eventually(Condition condition, int timeoutMs = 5000)
{
    return QTest::qWaitFor(condition, timeoutMs);
}

} // namespace nubo::test
