#pragma once

// The files of a scan as a table for spreadsheets and databases: CSV by RFC 4180, lines that end in CR and
// LF.
//
//   path,seconds,length,bytes,format,sample_rate,channels
//   "/music/01.flac",228.000,"00:03:48",24117248,"FLAC",44100,2
//   "/music/02.flac",,,512,"FLAC",,
//
// Text stands in quotes, numbers do not: so a spreadsheet can be told to leave the lengths alone. What is not
// known is empty. No cell is taken for a formula: a path begins with "/".

#include "cli/Sink.h"
#include "scan/ScanDetails.h"

namespace velmora {

/// The header line, then a line a file in scan order. Lengths are divided by `speed`, which is positive; the
/// seconds have three decimals, hours, minutes and seconds are rounded as everywhere (DisplayFormat.h). The
/// bytes of a path stand as they are.
void csvReport(const Sink& out, const ScanDetails& details, double speed);

} // namespace velmora
