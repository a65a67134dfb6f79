#pragma once

// What the project's pages (.md files) point at: links, pictures, and the files
// and tests that they name in passing.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// The targets of the links and pictures of `page` that stand in this repository, in their order: "dev" and
/// "docs/accuracy.md#summary", but no "https:" or "mailto:". Code is left out.
std::vector<std::string> linksOf(std::string_view page);

/// The paths that `page` names as code and that start in one of the repository's folders: "src/ui/kit" of
/// `src/ui/kit`. What holds a space or a placeholder (NAME, *, …) is no path.
std::vector<std::string> pathsNamedIn(std::string_view page);

/// The tests that `page` names as code: "Pages.EveryLinkLeadsSomewhere".
std::vector<std::string> testsNamedIn(std::string_view page);

/// The anchors of the headings of `page`, as a browser of the repository makes them: "the-way-of-one-file"
/// for "## The way of one file".
std::vector<std::string> anchorsOf(std::string_view page);

} // namespace velmora::test
