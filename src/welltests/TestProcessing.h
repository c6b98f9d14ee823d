#pragma once

#include "../support/Fault.h"
#include "ProcessedTest.h"
#include "TestTables.h"

namespace lumbarn {

/// A test that is being processed.
struct TestWork {
  ProcessedTest& test;
  const TestOptions& options;
  TestReport report;
};

/// A fault that has been reported as a Diagnosis with its position in the file.
struct ReportedFault : Fault {
  using Fault::Fault;
};

/// Derives what the records of a test omit. The walk must be where the records of the test ended.
void processTest(TestWork& work);

/// A step of the processing. Its failure is reported under the name of the routine, with what is lost, and
/// ends nothing but the step.
void runStep(TestWork& work, const char* routine, void (*step)(TestWork&), std::string_view lost);

/// Adds the connection indices to a table, if any were read.
void addIndices(TestWork& work, TestTable& table);

void processPLTRecords(TestWork& work);   ///< PLT table by measured depth with rates per length
void processBRANCHData(TestWork& work);   ///< list of branches
void processSEGMENTData(TestWork& work);  ///< list of segments, and which of them represent devices
void processICDData(TestWork& work);      ///< devices by the tubing branch that they empty into

}  // namespace lumbarn
