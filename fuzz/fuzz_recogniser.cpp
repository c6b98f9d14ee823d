#include <memory>

#include "Checks.h"
#include "files/Recogniser.h"
#include "record/RecordCursor.h"

namespace {

using namespace lumbarn;

constexpr const char* names[] = {"RUN.SMSPEC", "RUN.UNSMRY", "RUN.S0001", "RUN.UNRST",   "RUN.FINIT",
                                 "RUN.EGRID",  "RUN.RFT",    "RUN.GRID",  "RUN.SLNSPEC", "RUN"};

/// What the recogniser says of the form must hold for whoever goes on with it.
void checkForm(const std::shared_ptr<const ByteSource>& source, const Recognised& result) {
  const auto detected = detectForm(*source);
  fuzz::check(result.form.has_value() == detected.has_value(), "the form is that of the first header");
  if (!detected) return;
  fuzz::check(*result.form == detected->form, "the form is that of the first header");
  RecordCursor cursor(source, detected->form, "fuzz input");
  try {
    fuzz::check(cursor.next(), "a file with a form has a record");
    fuzz::check(cursor.header().keyword == detected->keyword, "the keyword is that of the first record");
  } catch (const BadRecord&) {
    fuzz::check(result.problem.has_value(), "damage in the first record is reported");
  }
}

}  // namespace

/// First byte: the file's name. The rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto source = std::make_shared<MemorySource>(fuzz::bytesOf({data + 1, size - 1}));
  const auto result = recognise(source, names[data[0] % std::size(names)]);
  const bool text = result.kind == FileKind::UserRft || result.kind == FileKind::UserPlt;
  fuzz::check(result.byContent ? result.form.has_value() != text : !text,
              "records that tell a kind have a form");
  fuzz::check(result.byContent || result.kind == FileKind::Unknown ||
                  data[0] % std::size(names) + 1 < std::size(names),
              "a kind is told by something");
  fuzz::check(!nameOf(result.kind).empty(), "every kind has a name");
  checkForm(source, result);
  return 0;
}
