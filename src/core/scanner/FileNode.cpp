#include "core/scanner/FileNode.h"

namespace nubo {

FileNode::FileNode(QString name, QString path, Type type)
    : m_name(std::move(name)), m_path(std::move(path)), m_type(type)
{
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

} // namespace nubo
