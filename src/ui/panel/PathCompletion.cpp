#include "ui/panel/PathCompletion.h"

#include "ui/kit/ShownName.h"
#include "ui/panel/TypedPaths.h"

#include <utility>

namespace velmora {

PathCompletion::PathCompletion(ReadFolder read)
    : m_read(std::move(read)) {}

void PathCompletion::follow(const QString& text, const std::filesystem::path& folder) {
    m_text = text;
    const qsizetype slash = text.lastIndexOf('/');
    m_wanted = slash < 0 ? folder : typedPath(text.first(slash + 1), folder);
    if (m_wanted == m_contents.folder || text.isEmpty() || text.contains('"')) {
        propose();
        return;
    }
    m_aside.run([this, read = m_read, wanted = m_wanted]() -> Aside::Answer {
        return [this, contents = read(wanted)]() mutable {
            m_contents = std::move(contents);
            propose();
        };
    });
}

void PathCompletion::propose() {
    QStringList proposals;
    const qsizetype nameStart = m_text.lastIndexOf('/') + 1;
    const QString begun = m_text.sliced(nameStart);
    const bool known = m_wanted == m_contents.folder && !m_text.isEmpty() && !m_text.contains('"');
    for (std::size_t i = 0; known && i < m_contents.files.size() && proposals.size() < maxCount; ++i) {
        const ListedFile& file = m_contents.files[i];
        const QString name = shownName(file.name);
        const bool fits = file.kind != ListedKind::other && file.hidden() == begun.startsWith('.') &&
                          name.startsWith(begun, Qt::CaseInsensitive) && name.toStdString() == file.name;
        if (fits) {
            const bool isFolder = file.kind == ListedKind::folder;
            proposals.append(m_text.first(nameStart) + name + (isFolder ? QStringLiteral("/") : QString()));
        }
    }
    if (proposals != m_proposals) {
        m_proposals = proposals;
        emit changed();
    }
}

} // namespace velmora
