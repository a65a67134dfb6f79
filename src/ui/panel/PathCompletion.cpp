#include "ui/panel/PathCompletion.h"

#include "ui/panel/FileList.h"
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
        return [this, contents = read(wanted)] {
            m_contents = contents;
            propose();
        };
    });
}

void PathCompletion::propose() {
    QStringList proposals;
    const qsizetype nameStart = m_text.lastIndexOf('/') + 1;
    const QString begun = m_text.sliced(nameStart);
    const bool known = m_wanted == m_contents.folder && !m_text.isEmpty() && !m_text.contains('"');
    for (const ListedFile& file : known ? m_contents.files : std::vector<ListedFile>()) {
        const QString name = QString::fromStdString(file.name);
        const bool fits = name.startsWith(begun, Qt::CaseInsensitive) && name == shownName(file.name) &&
                          name.toStdString() == file.name;
        if (fits && file.kind != ListedKind::other && file.hidden() == begun.startsWith('.') &&
            proposals.size() < maxCount) {
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
