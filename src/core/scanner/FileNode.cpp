#include "core/scanner/FileNode.h"

#include "core/files/NativePath.h"
#include "core/format/CheckedMath.h"

#include <algorithm>

namespace nubo {

FileNode::FileNode(QString name, QString path, Type type, bool isPackage)
    : m_name(std::move(name)), m_path(std::move(path)), m_type(type), m_package(isPackage)
{
}

QByteArray FileNode::nativePath() const
{
    return NativePath::encode(m_path);
}

qint64 FileNode::itemCount() const
{
    return m_type == Type::Directory ? std::max<qint64>(m_count, 1) : m_count;
}

bool FileNode::canDrill() const
{
    return isDirectory() && !m_package && !m_children.empty();
}

FileKind FileNode::kind() const
{
    return FileKinds::classify(*this);
}

std::vector<const FileNode*> FileNode::ancestors() const
{
    std::vector<const FileNode*> chain;
    for (const FileNode* node = this; node; node = node->m_parent)
        chain.push_back(node);
    std::reverse(chain.begin(), chain.end());
    return chain;
}

QString FileNode::extension() const
{
    // Read from the location, not the name: the root's name is a display name ("Macintosh HD").
    const qsizetype slash = m_path.lastIndexOf(QLatin1Char('/'));
    const QStringView last = QStringView(m_path).mid(slash + 1);
    const qsizetype dot = last.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0 || dot == last.size() - 1)
        return {};
    return last.mid(dot + 1).toString();
}

FileNode* FileNode::addChild(std::unique_ptr<FileNode> child)
{
    child->m_parent = this;
    m_children.push_back(std::move(child));
    return m_children.back().get();
}

void FileNode::setChildren(Children children)
{
    m_children = std::move(children);
    for (const auto& child : m_children)
        child->m_parent = this;
}

std::unique_ptr<FileNode> FileNode::remove(const FileNode* child)
{
    std::unique_ptr<FileNode> taken;
    for (auto it = m_children.begin(); it != m_children.end();) {
        if (it->get() == child) {
            taken = std::move(*it);
            it = m_children.erase(it);
        } else {
            ++it;
        }
    }
    if (!taken)
        return nullptr;
    taken->m_parent = nullptr;
    for (FileNode* node = this; node; node = node->m_parent) {
        addChecked(node->m_size, -taken->m_size);
        addChecked(node->m_count, -taken->itemCount());
    }
    return taken;
}

} // namespace nubo
