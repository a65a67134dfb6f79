#pragma once

// Rows of tests that run once for each row of a table.

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace velmora::test {

/// The base of such a row. The name stands at the end of the test's name, and it is all that is printed of a
/// row: without it a failing test shows the row's bytes and addresses.
struct NamedRow {
    std::string name; ///< letters and digits
};

inline std::ostream& operator<<(std::ostream& stream, const NamedRow& row) {
    return stream << row.name;
}

/// For the last argument of INSTANTIATE_TEST_SUITE_P.
template <typename Row>
std::string rowName(const testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

} // namespace velmora::test
