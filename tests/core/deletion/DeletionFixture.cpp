#include "DeletionFixture.h"

#include "core/files/SystemRoots.h"

namespace nubo::test {

void DeletionFixture::SetUp()
{
    for (const char* folder : {"home/Library/Caches", "Library", "tmp", "work"})
        dir(folder);
    SystemRoots roots{path("home"), path("Library"), path("tmp")};
    m_safety = std::make_unique<Safety>(roots, SafetyRules::forMac());
    m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
}

DeletionResult DeletionFixture::run(const QList<DeletionItem>& items, bool allowAdmin)
{
    return m_deleter->deleteItems(items, allowAdmin);
}

} // namespace nubo::test
