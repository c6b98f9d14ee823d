#include <atomic>
#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "Failure.h"
#include "Run.h"
#include "support/StandardStreams.h"
#include "support/System.h"

namespace {

#ifdef SIGHUP
constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};
#else
constexpr int endingSignals[] = {SIGINT, SIGTERM};
#endif

volatile std::sig_atomic_t receivedSignal = 0;
std::atomic<bool> stopRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

/// The first signal asks what is read to end, so that temporary files are removed; a second one ends the
/// program.
extern "C" void stop(int signal) {
  receivedSignal = signal;
  stopRequested = true;
  std::signal(signal, SIG_DFL);
}

}  // namespace

int main(int argc, char** argv) {
  lumbarn::openStandardStreams();
  std::ios::sync_with_stdio(false);
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);  // writing beyond the size limit then fails, and is reported
#endif
  for (const int signal : endingSignals) {
    // What was started to ignore it, as shells start work in the background, goes on ignoring it.
    if (std::signal(signal, SIG_IGN) != SIG_IGN) std::signal(signal, stop);
  }
  const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status =
      lumbarn::cli::run(args, std::cout, std::cerr, stopRequested, lumbarn::stderrIsTerminal());
  if (status == lumbarn::cli::Cancelled) {
    // Ends by the signal itself, so that a shell's loop around this command ends too.
    std::signal(receivedSignal, SIG_DFL);
    std::raise(receivedSignal);
  }
  return status;
}
