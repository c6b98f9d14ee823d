#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../files/FileChoice.h"
#include "../support/Session.h"
#include "RowIndex.h"
#include "SummaryChain.h"
#include "SummarySpec.h"
#include "SummaryVector.h"

namespace lumbarn {

/// The summary of one run as its files have it: vectors, and positions of rows. Nothing in it changes, so
/// that any number of questions can use it at the same time.
struct SummaryRun {
  std::shared_ptr<const SummarySpec> spec;
  std::vector<std::string> files;
  RowIndex index;
};

/// Reads a specification, also one that is damaged behind its vectors. Null with a Diagnosis when no vectors
/// can be read.
std::shared_ptr<const SummarySpec> readSpecification(const std::string& path, Session& session);

/// Finds the rows of a run. `sparse`: few values of each row will be read.
SummaryRun indexSummary(std::shared_ptr<const SummarySpec> spec, FileChoice choice, bool sparse,
                        Session& session);

/// The runs that one restarted from, latest first. One that cannot be read ends the chain, with a Diagnosis.
std::vector<SummaryRun> indexEarlierRuns(const SummarySpec& newest, bool sparse, Session& session);

/// The specification of the run from which the last run of a chain restarted, checked and not read. `chain`
/// has the specifications of its runs, newest first. Nothing where the chain ends; when it leads back to one
/// of its runs, with a Diagnosis.
std::optional<SummarySpec> findNextOfChain(std::span<const std::string> chain, const SummarySpec& last,
                                           Session& session);

/// Runs of a longer chain are not read: it must lead in circles.
constexpr std::size_t mostRunsOfChain = 1000;

bool timeIsFirst(const SummarySpec& spec);

/// What a chain has to know of a run.
ChainRun chainRunOf(const SummarySpec& spec, std::vector<SummaryVector> vectors,
                    std::span<const RowPlace> rows);

/// Whether there are completions among the vectors that are kept of a run. Without a choice by patterns one
/// completion vector in the file is enough, even if it is not kept: existing hosts expect it.
bool holdsCompletions(const SummarySpec& spec, std::span<const SummaryVector> kept, bool byPatterns);
/// Reports that an earlier run is not part of a table with completion vectors.
void reportRunOmitted(const SummarySpec& spec, Session& session);

}  // namespace lumbarn
