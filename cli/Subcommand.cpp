#include "Subcommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "support/Text.h"

namespace lumbarn::cli {
namespace {

/// A check of the parser, in our words.
CLI::Validator countsFromOne() {
  const auto check = [](const std::string& word) {
    const auto number = toInteger(word);
    return number && *number >= 1 ? "" : fmt::format("needs a number from 1, not \"{}\"", word);
  };
  return {check, ""};
}

Format formatNamed(const std::string& word) {
  if (equalNoCase(word, "table")) return Format::Table;
  if (equalNoCase(word, "csv")) return Format::Csv;
  if (equalNoCase(word, "json")) return Format::Json;
  throw CLI::ValidationError(fmt::format("--format is table, csv or json, not \"{}\"", word));
}

}  // namespace

Subcommand::Subcommand(CommandLine& line, const std::string& name, const std::string& description)
    : command_(*line.app.add_subcommand(name, description)), chosen_(line.chosen) {}

void Subcommand::setAction(Action action) {
  command_.callback([action = std::move(action), &chosen = chosen_] { chosen = action; });
}

void Subcommand::path(std::string& path, const std::string& description, const std::string& name) {
  command_.add_option(name, path, description)->required()->option_text(" ");
}

void Subcommand::flag(const std::string& name, bool& given, const std::string& description) {
  command_.add_flag(name, given, description);
}

void Subcommand::value(const std::string& name, std::string& text, const std::string& word,
                       const std::string& description) {
  command_.add_option(name, text, description)->option_text(word);
}

void Subcommand::value(const std::string& name, std::int32_t& number, const std::string& word,
                       const std::string& description) {
  command_.add_option(name, number, description)->option_text(word);
}

void Subcommand::value(const std::string& name, std::optional<std::int32_t>& number, const std::string& word,
                       const std::string& description) {
  command_.add_option(name, number, description)->option_text(word);
}

void Subcommand::requiredValue(const std::string& name, std::string& text, const std::string& word,
                               const std::string& description) {
  command_.add_option(name, text, description)->required()->option_text(word);
}

void Subcommand::ordinal(const std::string& name, std::int32_t& number, const std::string& description) {
  command_.add_option(name, number, description)->check(countsFromOne())->option_text("N");
}

void Subcommand::repeated(const std::string& name, std::vector<std::string>& texts, const std::string& word,
                          const std::string& description) {
  command_.add_option(name, texts, description)->allow_extra_args(false)->option_text(word);
}

void Subcommand::list(const std::string& name, std::vector<std::string>& texts, const std::string& word,
                      const std::string& description) {
  command_.add_option(name, texts, description)->allow_extra_args(false)->delimiter(',')->option_text(word);
}

void Subcommand::output(OutputOptions& options) {
  const auto setFormat = [&options](const std::string& word) { options.format = formatNamed(word); };
  command_.add_option_function<std::string>("--format", setFormat, "Form of the output: table, csv or json")
      ->option_text("FORMAT");
  value("-o,--output", options.file, "FILE", "Write to FILE, which appears when it is complete");
}

void Subcommand::footer(const std::string& text) { command_.footer(text); }

}  // namespace lumbarn::cli
