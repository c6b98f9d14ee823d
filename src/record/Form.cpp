#include "Form.h"

#include <algorithm>
#include <array>
#include <bit>

#include "../support/Diagnosis.h"
#include "../support/Text.h"
#include "Codec.h"
#include "FormFlags.h"

namespace lumbarn {

namespace {

std::optional<std::string> keywordAt(const ByteSource& source, std::uint64_t position) {
  std::array<std::byte, 8> bytes;
  if (source.readAt(position, bytes) < bytes.size()) return std::nullopt;
  return upper(trim({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
}

/// The other byte order than this machine's has the first mark's low byte, 16, at its other end.
bool swappedMarks(const ByteSource& source) {
  std::array<std::byte, 4> mark{};
  source.readAt(0, mark);
  return mark[std::endian::native == std::endian::little ? 3 : 0] == std::byte{16};
}

std::optional<RecordHeader> soundHeader(const ByteSource& source, const Form& form) {
  Window window(source);
  RecordHeader header;
  try {
    if (!makeCodec(form)->readHeader(window, 0, header)) return std::nullopt;
  } catch (const BadRecord&) {
    return std::nullopt;
  }
  const bool known = header.type != ElementType::Unknown || header.typeWord == "X231";
  if (!known || header.keyword.empty()) return std::nullopt;
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

std::optional<DetectedForm> detectForm(const ByteSource& source, std::span<const std::string_view> keywords) {
  const bool swapped = swappedMarks(source);
  const std::array<std::pair<std::uint64_t, Form>, 3> probes{{
      {2, {Framing::Formatted, false}},
      {4, {Framing::FourByteMarks, swapped}},
      {1, {Framing::OneByteMarks, false}},
  }};
  for (const auto& [position, form] : probes) {
    if (keywords.empty()) {
      if (const auto header = soundHeader(source, form)) return DetectedForm{form, header->keyword};
    } else if (const auto keyword = keywordAt(source, position)) {
      if (std::ranges::find(keywords, *keyword) != keywords.end()) return DetectedForm{form, *keyword};
    }
  }
  return std::nullopt;
}

}  // namespace lumbarn
