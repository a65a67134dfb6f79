#include "cli/FoldersReport.h"

#include "cli/Seconds.h"
#include "scan/FolderTotals.h"
#include "system/Names.h"

namespace velmora {

std::string foldersReport(const ScanDetails& details, const PathList& dropped, int depth, double speed) {
    std::string text;
    for (const FolderTotal& folder : folderTotals(details, dropped)) {
        if (folder.depth <= depth) {
            text += threeDecimals(folder.seconds / speed) + "\t" + std::to_string(folder.files) + "\t" +
                    fieldName(folder.path) + "\n";
        }
    }
    return text;
}

} // namespace velmora
