#pragma once

// Proposes names for a path that is being typed.

#include "ui/panel/Aside.h"
#include "ui/panel/FolderContents.h"

#include <QStringList>

#include <functional>

namespace velmora {

class PathCompletion : public QObject {
    Q_OBJECT

public:
    using ReadFolder = std::function<FolderContents(const std::filesystem::path&)>;

    explicit PathCompletion(ReadFolder read);

    /// Proposes what may follow `text`, typed while `folder` is shown.
    void follow(const QString& text, const std::filesystem::path& folder);

    /// At most `maxCount` texts that may replace the whole of what was typed; those of folders end in "/".
    /// Names that no text stands for are left out.
    const QStringList& proposals() const { return m_proposals; }

    static constexpr qsizetype maxCount = 8;

signals:
    void changed();

private:
    void propose();

    ReadFolder m_read;
    Aside m_aside;
    QString m_text;
    std::filesystem::path m_wanted; ///< the folder that the text lies in
    FolderContents m_contents;      ///< what is known of it, once its `folder` is that
    QStringList m_proposals;
};

} // namespace velmora
