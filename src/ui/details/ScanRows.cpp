#include "ui/details/ScanRows.h"

#include "records/DisplayFormat.h"
#include "scan/FolderTotals.h"
#include "scan/Missing.h"
#include "system/FileName.h"
#include "ui/kit/ShownName.h"

#include <cstdint>
#include <set>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// The last component of `path`, which has no final "/" unless it is the root.
std::string_view nameIn(std::string_view path) {
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

/// The folder that holds `path`; of the root "".
std::string_view folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return path == "/" ? "" : path.substr(0, slash == 0 ? 1 : slash);
}

/// A list whose first two columns are a name and its folder.
class NamedRows : public Rows {
public:
    std::string word(std::size_t row, std::size_t column) const final {
        switch (column) {
        case nameColumn:
            return lastName(row);
        case folderColumn:
            return std::string(folderOf(name(row)));
        default:
            return lead(row);
        }
    }

    QString cell(std::size_t row, std::size_t column) const final {
        return column <= folderColumn ? shownName(word(row, column)) : further(row, column);
    }

protected:
    static constexpr std::size_t nameColumn = 0;
    static constexpr std::size_t folderColumn = 1;
    static constexpr std::size_t thirdColumn = 2;

    /// The last component of the name.
    virtual std::string lastName(std::size_t row) const { return std::string(nameIn(name(row))); }

    /// The cell of a column after the second.
    virtual QString further(std::size_t row, std::size_t column) const = 0;
};

class FileRows : public NamedRows {
public:
    explicit FileRows(std::shared_ptr<const ScanDetails> details)
        : m_details(std::move(details)) {}

    const std::vector<Column>& columns() const override {
        static const std::vector<Column> columns = {{QStringLiteral("NAME"), 0.42},
                                                    {QStringLiteral("FOLDER"), 0.34},
                                                    {QStringLiteral("LENGTH"), 0.12, true},
                                                    {QStringLiteral("SIZE"), 0.12, true}};
        return columns;
    }

    std::size_t size() const override { return m_details->files.size(); }

    double number(std::size_t row, std::size_t column) const override {
        const Measured& file = m_details->files[row];
        return column == thirdColumn ? file.seconds : static_cast<double>(file.bytes);
    }

    std::string name(std::size_t row) const override {
        return m_details->shownName(m_details->files[row].url.native());
    }

    std::string lead(std::size_t row) const override {
        const double seconds = m_details->files[row].seconds;
        return seconds < 0 ? "\u2013" : hms(displayable(seconds));
    }

    fs::path place(std::size_t row) const override { return m_details->placeOf(m_details->files[row].url); }

    bool isMissing(std::size_t row) const override { return m_details->files[row].seconds < 0; }

protected:
    std::string lastName(std::size_t row) const override { return m_details->files[row].url.name(); }

    QString further(std::size_t row, std::size_t column) const override {
        return QString::fromStdString(column == thirdColumn ? lead(row)
                                                            : prettyBytes(m_details->files[row].bytes));
    }

private:
    std::shared_ptr<const ScanDetails> m_details;
};

class FolderRows : public NamedRows {
public:
    FolderRows(const ScanDetails& details, const PathList& dropped)
        : m_folders(folderTotals(details, dropped)) {
        for (const auto& [directory, archive] : details.archiveOf) {
            m_archives.insert(details.placeOf(archive));
        }
    }

    const std::vector<Column>& columns() const override {
        static const std::vector<Column> columns = {{QStringLiteral("NAME"), 0.42},
                                                    {QStringLiteral("IN"), 0.34},
                                                    {QStringLiteral("LENGTH"), 0.12, true},
                                                    {QStringLiteral("FILES"), 0.12, true}};
        return columns;
    }

    std::size_t size() const override { return m_folders.size(); }

    double number(std::size_t row, std::size_t column) const override {
        return column == thirdColumn ? m_folders[row].seconds : static_cast<double>(m_folders[row].files);
    }

    std::string name(std::size_t row) const override { return m_folders[row].path; }

    std::string lead(std::size_t row) const override { return hms(displayable(m_folders[row].seconds)); }

    /// The folder, or the archive in which it lies.
    fs::path place(std::size_t row) const override {
        const std::string& path = m_folders[row].path;
        for (const std::string_view folder : parentFolders(path)) {
            if (m_archives.contains(std::string(folder))) {
                return folder;
            }
        }
        return path;
    }

    bool isMissing(std::size_t /*row*/) const override { return false; }

    int depth(std::size_t row) const override { return m_folders[row].depth; }

protected:
    QString further(std::size_t row, std::size_t column) const override {
        return column == thirdColumn ? QString::fromStdString(lead(row))
                                     : QString::number(m_folders[row].files);
    }

private:
    std::vector<FolderTotal> m_folders;
    std::set<std::string> m_archives; ///< of the user's, which were unpacked
};

class MissingRows : public NamedRows {
public:
    explicit MissingRows(std::shared_ptr<const ScanDetails> details)
        : m_details(std::move(details)) {
        for (std::size_t i = 0; i < m_details->files.size(); ++i) {
            if (m_details->files[i].seconds < 0) {
                m_files.push_back(static_cast<std::uint32_t>(i));
            }
        }
    }

    const std::vector<Column>& columns() const override {
        static const std::vector<Column> columns = {{QStringLiteral("NAME"), 0.36},
                                                    {QStringLiteral("FOLDER"), 0.30},
                                                    {QStringLiteral("REASON"), 0.34}};
        return columns;
    }

    std::size_t size() const override {
        return m_details->unreadableFolders.size() + m_details->skippedArchives.size() + m_files.size();
    }

    double number(std::size_t /*row*/, std::size_t /*column*/) const override { return 0; }

    std::string name(std::size_t row) const override { return m_details->shownName(at(row).path.native()); }

    std::string lead(std::size_t row) const override { return at(row).why; }

    fs::path place(std::size_t row) const override { return m_details->placeOf(at(row).path); }

    bool isMissing(std::size_t /*row*/) const override { return true; }

protected:
    QString further(std::size_t row, std::size_t /*column*/) const override {
        return QString::fromStdString(lead(row));
    }

private:
    Missing at(std::size_t row) const {
        const std::size_t folders = m_details->unreadableFolders.size();
        const std::size_t archives = m_details->skippedArchives.size();
        if (row < folders) {
            return missing(m_details->unreadableFolders[row]);
        }
        if (row < folders + archives) {
            return missing(m_details->skippedArchives[row - folders]);
        }
        return missing(m_details->files[m_files[row - folders - archives]]);
    }

    std::shared_ptr<const ScanDetails> m_details;
    std::vector<std::uint32_t> m_files; ///< those that were not measured
};

} // namespace

RowsMaker fileRows(std::shared_ptr<const ScanDetails> details) {
    return [details = std::move(details)] { return std::make_unique<FileRows>(details); };
}

RowsMaker folderRows(std::shared_ptr<const ScanDetails> details, PathList dropped) {
    return [details = std::move(details), dropped = std::move(dropped)] {
        return std::make_unique<FolderRows>(*details, dropped);
    };
}

RowsMaker missingRows(std::shared_ptr<const ScanDetails> details) {
    return [details = std::move(details)] { return std::make_unique<MissingRows>(details); };
}

} // namespace velmora
