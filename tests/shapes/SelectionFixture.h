#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shapes/EclipseInfo.h"
#include "shapes/HeaderLayout.h"
#include "shapes/OnlyList.h"

namespace lumbarn {

/// Stores and vectors as a summary specification gives them.
struct Headers {
  AttributeStores xStore;
  std::vector<VECTORDATA> xVectors;
  bool qOK = false;

  Headers() { InitByteStorage(false, xStore, qOK); }

  /// One vector; "-" for no member.
  Headers& add(std::string_view zClass, std::string_view zMember) {
    auto& xVector = xVectors.emplace_back();
    setPointer(xVector, attributeClass, xStore(attributeClass).add(zClass));
    if (zMember != "-") setPointer(xVector, attributeMember, xStore(attributeMember).add(zMember));
    return *this;
  }

  ECLIPSEINFO info(bool qMembers = true) {
    ECLIPSEINFO xInfo;
    setByteECLIPSEINFO(xStore, xVectors, xInfo, qOK);
    if (qOK && qMembers) setByteECLIPSECLASS(xStore, xVectors, xInfo, qOK);
    return xInfo;
  }
};

inline ECLIPSECLASS& classOf(ECLIPSEINFO& xInfo, std::string_view zClass) {
  return xInfo.xClass[slot(getClassIndex(zClass))];
}

/// The mask as a text of 1 and 0.
inline std::string maskText(ECLIPSEINFO xInfo) {
  std::string text;
  for (const bool kept : vectorMask(xInfo)) text += kept ? '1' : '0';
  return text;
}

/// A list from "CLASS/member" texts.
inline ByteTable listOf(const std::vector<std::string>& lines) {
  ByteTable bOnly(onlyWidth, lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto cut = lines[i].find('/');
    bOnly.put(i + 1, 1, 16, lines[i].substr(0, cut));
    bOnly.put(i + 1, 17, 40, lines[i].substr(cut + 1));
  }
  return bOnly;
}

}  // namespace lumbarn
