#pragma once

// Which call of a program fails, and how: the part of the fault injector that decides. It is told by two
// environment variables, which it takes away again, so that the programs started by this one run untouched:
//
//   VELMORA_FAULT=CALL:NUMBER[+]:HOW[:PART]
//     the NUMBERth call of this kind (from 1; with "+" every one from there on) does not succeed. With PART
//     only calls count that concern a path which holds PART.
//     HOW  an error's name: EIO, ENOSPC, ...
//          short    half of what was asked for is read or written
//          unknown  an entry of a folder comes without its kind, as on some file systems
//          end      nothing is read, as at the end of a file
//          stop     the process stops (SIGSTOP); continued, it makes the call as if nothing had been
//          kill     the process dies (SIGKILL)
//          block    the call never returns, whatever signal comes: a share that does not answer
//   VELMORA_FAULT_LOG=FILE
//     a line a call: "CALL NUMBER PATH", with "! " in front of those that did not succeed
//
// Allocates nothing and may be called from any thread, also before main.

namespace velmora::faults {

/// What a call has to do instead of its work.
struct Fault {
    int error = 0;        ///< not 0: fail with this errno
    bool isShort = false; ///< do half of the work
    bool isEndOfFile = false;
    bool isUnknown = false;

    explicit operator bool() const { return error != 0 || isShort || isEndOfFile || isUnknown; }
};

/// Counts a call that names a path; `path` may be null.
Fault faultOf(const char* call, const char* path) noexcept;

/// Counts a call on an open file.
Fault faultOf(const char* call, int descriptor) noexcept;

/// Counts a call that concerns no file.
Fault faultOf(const char* call) noexcept;

} // namespace velmora::faults
