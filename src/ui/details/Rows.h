#pragma once

// One list of the details: so many rows, each with a cell for each column. Lists are made when they are
// shown, and a row's texts when the row is.

#include <QString>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora {

struct Column {
    QString title;
    double share = 0;      ///< of the width; those of a list add up to 1
    bool isNumber = false; ///< ordered by `Rows::number`, largest first when it is first pressed
};

/// Never changes: rows are read by several threads at once. Rows are numbered from 0, in the order of the
/// scan.
class Rows {
public:
    Rows() = default;
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    virtual ~Rows() = default;

    virtual const std::vector<Column>& columns() const = 0;

    virtual std::size_t size() const = 0;

    /// What is shown, also of names that are not UTF-8.
    virtual QString cell(std::size_t row, std::size_t column) const = 0;

    /// What a column of names or words is ordered by, in bytes.
    virtual std::string word(std::size_t row, std::size_t column) const = 0;

    /// What a column of numbers is ordered by.
    virtual double number(std::size_t row, std::size_t column) const = 0;

    /// The file or folder as the user knows it, in bytes. It is what a search looks into.
    virtual std::string name(std::size_t row) const = 0;

    /// What stands before `name` in a copy: "00:03:48".
    virtual std::string lead(std::size_t row) const = 0;

    /// What the file manager can show of it.
    virtual std::filesystem::path place(std::size_t row) const = 0;

    /// Whether it is missing in the total.
    virtual bool isMissing(std::size_t row) const = 0;

    /// How many folders below its source it lies, where that is to be seen.
    virtual int depth(std::size_t /*row*/) const { return 0; }
};

} // namespace velmora
