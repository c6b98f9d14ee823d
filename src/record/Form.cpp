#include "Form.h"

#include <algorithm>
#include <array>
#include <bit>

#include "../support/Session.h"
#include "Codec.h"
#include "FormFlags.h"

namespace lumbarn {

namespace {

constexpr std::byte headerMark{16};  // low byte of the mark in front of a header

/// The other byte order than this machine's has the first mark's low byte at its other end.
bool swappedMarks(std::span<const std::byte, 4> mark) {
  return mark[std::endian::native == std::endian::little ? 3 : 0] == headerMark;
}

/// Whether the first byte is not that of a record mark. Parsing text in a file with marks would take longer
/// than reading its first header.
bool mayBeText(std::byte first) { return first != std::byte{0} && first != headerMark; }

std::optional<RecordHeader> soundHeader(const ByteSource& source, const Form& form) {
  Window window(source);
  RecordHeader header;
  try {
    if (!makeCodec(form)->readHeader(window, 0, header)) return std::nullopt;
  } catch (const BadRecord& damage) {
    if (damage.diagnosis().message == Message::FileRead) throw;
    return std::nullopt;
  }
  if (!isPlausible(header)) return std::nullopt;
  return header;
}

}  // namespace

std::string Form::description() const {
  if (framing == Framing::Formatted) return "formatted";
  std::string text =
      framing == Framing::FourByteMarks ? "unformatted, 4-byte marks" : "unformatted, 1-byte marks";
  const bool bigEndian = byteSwap == (std::endian::native == std::endian::little);
  return text + (bigEndian ? ", big-endian" : ", little-endian");
}

Form FormFlags::form() const {
  if (Formatted) return {Framing::Formatted, false};
  return {UNIX ? Framing::FourByteMarks : Framing::OneByteMarks, byteSwap};
}

void FormFlags::setForm(const Form& form) {
  Formatted = form.formatted();
  if (Formatted) return;
  UNIX = form.framing == Framing::FourByteMarks;
  byteSwap = form.byteSwap;
}

std::optional<DetectedForm> detectForm(const ByteSource& source) {
  std::array<std::byte, 4> start{};
  source.readAt(0, start);
  const std::array<Form, 3> probes{{{Framing::Formatted, false},
                                    {Framing::FourByteMarks, swappedMarks(start)},
                                    {Framing::OneByteMarks, false}}};
  for (const Form& form : probes) {
    if (form.formatted() && !mayBeText(start[0])) continue;
    if (auto header = soundHeader(source, form)) return DetectedForm{form, std::move(header->keyword)};
  }
  return std::nullopt;
}

std::optional<DetectedForm> detectForm(const ByteSource& source, std::span<const std::string_view> keywords) {
  auto detected = detectForm(source);
  if (detected && std::ranges::find(keywords, detected->keyword) == keywords.end()) detected.reset();
  return detected;
}

std::optional<DetectedForm> detectForm(const ByteSource& source, std::span<const std::string_view> keywords,
                                       Session& session) {
  try {
    return detectForm(source, keywords);
  } catch (BadRecord& failure) {
    session.diagnose(std::move(failure.diagnosis()));
    return std::nullopt;
  }
}

}  // namespace lumbarn
