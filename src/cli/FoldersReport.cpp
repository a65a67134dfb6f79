#include "cli/FoldersReport.h"

#include "cli/Seconds.h"
#include "scan/FolderTotals.h"
#include "system/Names.h"

#include <string>

namespace velmora {

void foldersReport(const Sink& out, const ScanDetails& details, const PathList& dropped, int depth,
                   double speed) {
    for (const FolderTotal& folder : folderTotals(details, dropped)) {
        if (folder.depth <= depth) {
            out(threeDecimals(folder.seconds / speed) + "\t" + std::to_string(folder.files) + "\t" +
                fieldName(folder.path) + "\n");
        }
    }
}

} // namespace velmora
