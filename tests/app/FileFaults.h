#pragma once

#include <QByteArray>

/// Interposer for open, read, write, fsync, fdatasync, close, linkat and rename: a program that links FileFaults.cpp
/// can make one of the calls on files in a folder fail, or kill the process there.
namespace FileFaults {

enum class Fault {
    None,        ///< only counts
    Fail,        ///< the call fails and does nothing; close closes
    Kill,        ///< the process ends before the call
    KillHalfway, ///< the process ends after half of a write, else before the call
    FullDisk     ///< every write beyond `call` bytes fails
};

/// Applies `fault` to call number `call`, from 0, on files below `folder`, with `error` as errno, until the next call
/// of inject. Returns the number of calls since the previous one.
int inject(Fault fault = Fault::None, int call = 0, int error = 0, const QByteArray &folder = {});

} // namespace FileFaults
