#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "../shapes/AttributeStore.h"
#include "../shapes/ByteTable.h"
#include "../shapes/XYData.h"
#include "../support/Session.h"

namespace lumbarn {

/// Folding an earlier run of a restart chain into the table of the later ones. "Main" is the table that is
/// changed, "old" the earlier run; in both, column 1 is the time. Numbers of vectors count from 1.
///
/// After a failure the main table is as it was. These are the calling forms of hosts: they fill a table by a
/// `ChainPlan` as `SummaryChain` does, with rows by `rowsBefore` and vectors by `pairTexts`. Deliberate:
/// units are not converted, and no start date shifts the times, as hosts hand in values without either.

/// Folds one earlier run in: its rows that lie before the first time of the main table come in front, its
/// vectors that the main table has not become new columns behind. Cells with no source are 0; a run with no
/// row in front still adds its new vectors, as columns of 0, so that headers and columns stay in step. With
/// qPerforations nothing is done: a table that holds completion data takes no earlier runs.
void mergeSUMMARYData(Session& session, const ByteTable& bOld, const XYData& sOld, ByteTable& bMain,
                      XYData& sMain, bool qPerforations, bool& qOK);
/// The same with headers as string numbers (24 bytes a vector) into stores.
void mergeStoreSUMMARYData(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                           const XYData& sOld, AttributeStores& xStoreMain, ByteTable& bPointersMain,
                           XYData& sMain, bool qPerforations, bool& qOK);
/// Folds connection vectors with one length each in. The lengths are merged as if they were a table of one
/// column, by their own values: deliberate. So lengths that do not go with the vectors any more come out
/// when the runs differ in their connections, and whoever uses them must check the count.
bool mergeConnections(Session& session, const ByteTable& bOld, const XYData& sOld,
                      std::span<const float> sLengthsOld, ByteTable& bMain, XYData& sMain,
                      std::vector<float>& sLengthsMain);
/// Calling form of the same. With qPerforations nothing is done.
void mergeSUMMARYHorizData(Session& session, const ByteTable& bOld, const XYData& sOld,
                           std::span<const float> sLengthsOld, ByteTable& bMain, XYData& sMain,
                           std::vector<float>& sLengthsMain, bool qPerforations, bool& qOK);

/// Per header the text by which it is matched, and its length: variable, class, member, index, LGR name and
/// LGR class, each trimmed and followed by a character 0.
void createSummaryList(Session& session, const ByteTable& bHeaders, std::vector<std::string>& zKeys,
                       std::vector<std::int32_t>& nLengths, bool& qOK);
void createStoreSummaryList(Session& session, const AttributeStores& xStore, const ByteTable& bPointers,
                            std::vector<std::string>& zKeys, std::vector<std::int32_t>& nLengths, bool& qOK);

/// Matches headers: iMatch gets, per main vector, the number of the old vector that is the same, 0 for none;
/// iNew the nNew old vectors that are in no pair. qOK False, and nothing said, for headers of less than 233
/// bytes.
void checkSummaryList(Session& session, const ByteTable& bOld, const ByteTable& bMain,
                      std::vector<std::int32_t>& iNew, std::int32_t& nNew, std::vector<std::int32_t>& iMatch,
                      bool& qOK);
void checkStoreSummaryList(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                           const AttributeStores& xStoreMain, const ByteTable& bPointersMain,
                           std::vector<std::int32_t>& iNew, std::int32_t& nNew,
                           std::vector<std::int32_t>& iMatch, bool& qOK);

/// Adds the headers of the first nNew vectors in iNew.
void mergeHeaders(Session& session, const ByteTable& bOld, std::span<const std::int32_t> iNew,
                  std::int32_t nNew, ByteTable& bMain, bool& qOK);
void mergeStoreHeaders(Session& session, const AttributeStores& xStoreOld, const ByteTable& bPointersOld,
                       std::span<const std::int32_t> iNew, std::int32_t nNew, AttributeStores& xStoreMain,
                       ByteTable& bPointersMain, bool& qOK);

/// Extends the values. A main table without rows has no first time, so all old rows come in front of it; its
/// columns are then as many as iMatch has entries, should it have none. Falls back to
/// `mergeDataFormScratchfile` when there is no memory for the new table beside the old one.
void mergeData(Session& session, const XYData& sOld, std::span<const std::int32_t> iNew, std::int32_t nNew,
               std::span<const std::int32_t> iMatch, XYData& sMain, bool& qOK);
/// The same with one table in memory at a time: the new one goes through a temporary file, which is gone on
/// every way out. When memory gives out between the two, the old table is read back from it.
void mergeDataFormScratchfile(Session& session, const XYData& sOld, std::span<const std::int32_t> iNew,
                              std::int32_t nNew, std::span<const std::int32_t> iMatch, XYData& sMain,
                              bool& qOK);

/// Whether headers show perforation data. For iType 13: some class begins with "C"; for 31, 32 and 38: some
/// variable is "WLLYR"; for any other, no.
bool CheckforPerfs(const ByteTable& bHeaders, std::int32_t iType);
/// The same asked of the stores: class "COMPLETIONS", variable "WLLYR".
bool CheckStoreforPerfs(const AttributeStores& xStore, std::int32_t iType);

}  // namespace lumbarn
