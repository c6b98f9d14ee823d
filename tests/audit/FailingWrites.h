#pragma once

namespace lumbarn::test {

/// Makes writes to files of this process fail as on a full disk: the n-th write from now on, from 1, and with
/// `lasting` all after it.
void failWrites(int n, bool lasting);
/// Whether the write that fails has been reached.
bool writeFailed();

}  // namespace lumbarn::test
