#pragma once

// The panel in which files and folders are chosen, or a place to save a file at. It decides nothing about
// what is chosen: whoever opens it does.

#include "system/Paths.h"
#include "ui/panel/Aside.h"
#include "ui/panel/FileList.h"
#include "ui/panel/PathCompletion.h"

#include <QStringList>
#include <QVariantList>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace velmora {

/// A folder that one press leads to.
struct Place {
    QString title;
    QString group; ///< places of a group stand together
    std::filesystem::path folder;
};

/// What is asked of the user.
struct PanelRequest {
    QString message;
    QString prompt; ///< the title of the button that confirms
    Paths folders;  ///< it begins with the first of them that can be read

    /// The name proposed for the file to save. Absent: files and folders are to be chosen.
    std::optional<std::string> name = {};
    std::string ending = {}; ///< of the file to save, such as ".zip"; added where it is missing

    /// Called on another thread.
    std::function<std::vector<Place>()> places = {};

    /// Called with what was chosen: several paths, or the one to save at, whose folder is there. The panel
    /// stays open until `close`.
    std::function<void(const Paths&)> chosen = {};
};

/// Main thread. Folders are read on other threads: it answers while one cannot be read.
class FilePanel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program provides its panel.")
    Q_PROPERTY(bool open READ isOpen NOTIFY openChanged)
    Q_PROPERTY(bool saving READ saving NOTIFY openChanged)
    Q_PROPERTY(QString message READ message NOTIFY openChanged)
    Q_PROPERTY(QString prompt READ prompt NOTIFY openChanged)
    Q_PROPERTY(velmora::FileList* files READ files CONSTANT)
    Q_PROPERTY(QVariantList places READ places NOTIFY placesChanged)
    Q_PROPERTY(QStringList crumbs READ crumbs NOTIFY folderChanged)
    Q_PROPERTY(QString folderText READ folderText NOTIFY folderChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY folderChanged)
    Q_PROPERTY(bool reading READ reading NOTIFY folderChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    Q_PROPERTY(QString complaint READ complaint NOTIFY complaintChanged)
    Q_PROPERTY(bool typing READ typing WRITE setTyping NOTIFY typedChanged)
    Q_PROPERTY(QString typed READ typed WRITE setTyped NOTIFY typedChanged)
    Q_PROPERTY(QStringList proposals READ proposals NOTIFY proposalsChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(bool acceptable READ acceptable NOTIFY acceptableChanged)

public:
    using ReadFolder = PathCompletion::ReadFolder;

    explicit FilePanel(ReadFolder read = &readFolder, QObject* parent = nullptr);

    void ask(PanelRequest request);

    bool isOpen() const { return m_open; }

    bool saving() const { return m_request.name.has_value(); }

    QString message() const { return m_request.message; }

    QString prompt() const { return m_request.prompt; }

    FileList* files() { return &m_files; }

    QVariantList places() const; ///< maps of "title", "group", "here": whether its folder is shown

    /// The names on the way to the folder, "/" first.
    QStringList crumbs() const;

    QString folderText() const;

    bool canGoBack() const { return !m_before.empty(); }

    bool reading() const { return m_reader.busy(); }

    /// Why nothing is listed; empty while something is, or may soon be.
    QString notice() const;

    /// What is wrong with what was typed or asked for; empty when nothing is.
    QString complaint() const { return m_complaint; }

    /// Whether a path is being typed.
    bool typing() const { return m_typing; }

    void setTyping(bool typing);

    QString typed() const { return m_typed; }

    void setTyped(const QString& typed);

    QStringList proposals() const { return m_completion.proposals(); }

    QString name() const { return m_name; }

    void setName(const QString& name);

    /// Whether there is something to confirm.
    bool acceptable() const;

public slots:
    void close();
    void accept();             ///< the button: chooses what is typed, else what is selected
    void activate();           ///< Enter in the list: opens the one folder that is selected, else as `accept`
    void submit();             ///< Enter in the path: opens the one folder that is typed, else as `accept`
    void goUp();               ///< to the parent folder
    void goBack();             ///< to the folder shown before
    void openCrumb(int index); ///< the folder of a name in `crumbs`
    void openPlace(int index); ///< the folder of one of `places`
    void makeFolder(const QString& name); ///< in the folder that is shown, and opens it

signals:
    void openChanged();
    void placesChanged();
    void folderChanged();
    void noticeChanged();
    void complaintChanged();
    void typedChanged();
    void proposalsChanged();
    void nameChanged();
    void acceptableChanged();

private:
    void open(const Paths& folders, const std::string& current = {});
    void goTo(const std::filesystem::path& folder, const std::string& current = {});
    void show(const FolderContents& contents, const std::string& current);
    void readDetails(const FolderContents& contents);
    void readPlaces();
    static QString wordsOf(int error);
    void complain(const QString& complaint);
    void complainOf(const std::filesystem::path& path, int error);
    void followSelection();
    void choose(const Paths& paths);
    void lookUp(const Paths& paths, bool opensFolder);
    void lookUpDestination();

    ReadFolder m_read;
    PanelRequest m_request;
    bool m_open = false;
    std::filesystem::path m_folder;
    Paths m_before; ///< the folders shown before, the last at the end
    std::vector<Place> m_places;
    QString m_failure; ///< why the folder could not be read
    QString m_complaint;
    QString m_typed;
    bool m_typing = false;
    QString m_name;
    std::string m_nameBytes; ///< what `m_name` stands for, unless it was edited
    FileList m_files;
    PathCompletion m_completion;
    Aside m_reader;
    Aside m_looker;
    Aside m_detailReader;
    Aside m_placeReader;
};

} // namespace velmora
