#include "Error.h"

#include <new>
#include <utility>

#include "../support/Fault.h"
#include "../support/Session.h"

namespace lumbarn {

Error::Error(Kind kind, Diagnosis diagnosis, std::vector<std::string> candidates)
    : std::runtime_error(diagnosis.text()),
      kind_(kind),
      diagnosis_(std::move(diagnosis)),
      candidates_(std::move(candidates)) {}

Error::~Error() = default;

namespace {

Error::Kind kindOf(const Diagnosis& diagnosis) {
  return diagnosis.message == Message::FileRead || diagnosis.message == Message::FileWrite ||
                 diagnosis.message == Message::FileOpen
             ? Error::Kind::System
             : Error::Kind::Damaged;
}

Error failure(Error::Kind kind, const char* problem) {
  return {kind, {.message = Message::SystemFault, .problem = problem}};
}

}  // namespace

Error errorInFlight() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const BadRecord& damage) {
    return {kindOf(damage.diagnosis()), damage.diagnosis()};
  } catch (const LoadCanceled&) {
    return {Error::Kind::Cancelled, {.message = Message::Stopped}};
  } catch (const Fault& fault) {
    return failure(fault.number() == FaultNumber::OutOfMemory ? Error::Kind::Memory : Error::Kind::BadRequest,
                   fault.what());
  } catch (const std::bad_alloc&) {
    return failure(Error::Kind::Memory, "out of memory");
  } catch (const std::exception& other) {
    return failure(Error::Kind::System, other.what());
  }
}

}  // namespace lumbarn
