#pragma once

// The playing time of an ASF file (.wma, .asf, .wmv) from the File Properties Object in its header. Nothing
// is decoded. Layout after Microsoft's Advanced Systems Format (ASF) Specification, sections 3.1 and 3.2;
// integers are little-endian, GUIDs are given as their bytes stand in the file.
//
// Header Object, at the start of the file:
//
//   offset  size  field
//        0    16  object GUID, 30 26 B2 75 8E 66 CF 11 A6 D9 00 AA 00 62 CE 6C
//       16     8  object size: the whole header, its objects included
//       24     4  number of header objects
//       28     2  reserved
//       30        the objects, one after the other
//
// Each object begins with its GUID (16 bytes) and its size (8 bytes), which counts the whole object.
//
// File Properties Object:
//
//   offset  size  field
//        0    16  object GUID, A1 DC AB 8C 47 A9 CF 11 8E E4 00 C0 0C 20 53 65
//       16     8  object size
//       24    16  file ID
//       40     8  file size
//       48     8  creation date
//       56     8  data packets count
//       64     8  play duration, in units of 100 ns, preroll included
//       72     8  send duration
//       80     8  preroll, in milliseconds
//       88     4  flags

#include "measure/bytes/ByteSource.h"
#include "measure/bytes/Timing.h"

#include <optional>

namespace velmora::HeaderDuration {

/// Play duration less preroll of the first File Properties Object in `source`; positive. Absent
/// when there is none within the header and the first mebibyte, when the objects before it do not lie one
/// after the other, when nothing positive remains (a live stream states 0), or when it cannot be read.
/// Reads 4 KiB, and further pieces of the first mebibyte where longer objects come first; none twice.
std::optional<Timing> asfTiming(const ByteSource& source);

/// Its seconds alone.
std::optional<double> asfSeconds(const ByteSource& source);

} // namespace velmora::HeaderDuration
