#include "Guarded.h"

#include <new>

#include <fmt/format.h>

#include "Fault.h"

namespace lumbarn {

namespace {

void report(Session& session, const char* text, FaultNumber number, const char* className,
            const char* routine) {
  session.reportFault(fmt::format("Error:{} (No.{}) In [{} (Code) ({})] ", text, static_cast<int>(number),
                                  className, routine));
}

}  // namespace

PlacedFault::~PlacedFault() = default;

void throwPlaced(const char* className, const char* routine) {
  const auto placed = [&](const Fault& fault) { return PlacedFault(fault, className, routine); };
  try {
    throw;
  } catch (const PlacedFault&) {
    throw;
  } catch (const BadRecord&) {
    throw;
  } catch (const LoadCanceled&) {
    throw;
  } catch (const Fault& fault) {
    throw placed(fault);
  } catch (const std::bad_alloc&) {
    throw placed(Fault(FaultNumber::OutOfMemory));
  } catch (const std::length_error&) {
    throw placed(Fault(FaultNumber::OutOfMemory));
  } catch (const std::exception& other) {
    throw placed(Fault(FaultNumber::InvalidCall, other.what()));
  }
}

void reportCurrentException(Session& session, const char* className, const char* routine) noexcept {
  try {
    try {
      throw;
    } catch (BadRecord& damage) {
      session.diagnose(std::move(damage.diagnosis()));
    } catch (const PlacedFault& fault) {
      report(session, fault.what(), fault.number(), fault.className(), fault.routine());
    } catch (const Fault& fault) {
      report(session, fault.what(), fault.number(), className, routine);
    } catch (const LoadCanceled&) {  // the host knows: it set the flag
    } catch (const std::bad_alloc&) {
      report(session, faultText(FaultNumber::OutOfMemory), FaultNumber::OutOfMemory, className, routine);
    } catch (const std::length_error&) {  // a container asked for more than it can ever hold
      report(session, faultText(FaultNumber::OutOfMemory), FaultNumber::OutOfMemory, className, routine);
    } catch (const std::exception& other) {
      report(session, other.what(), FaultNumber::InvalidCall, className, routine);
    }
  } catch (...) {
    // Reporting itself ran out of memory, or a host's callback threw: qOK False and the count are what is
    // left.
    session.countFault();
  }
}

}  // namespace lumbarn
