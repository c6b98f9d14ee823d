#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "HdfFunctions.h"

namespace lumbarn {

/// Where the bytes of an HDF5 file go. Nothing here may throw, as HDF5 calls it.
class HdfStorage {
 public:
  virtual ~HdfStorage() = default;
  /// False when not all bytes could be written.
  virtual bool writeAt(std::uint64_t position, std::span<const std::byte> bytes) noexcept = 0;
  virtual bool readAt(std::uint64_t position, std::span<std::byte> out) noexcept = 0;
  /// The reason for the first failure.
  virtual std::string error() const = 0;
};

/// A new HDF5 file, written piece by piece through the module lumbarn_vtk, which is opened for it. Whatever
/// fails ends in BadRecord: FileWrite when the file cannot be written, ExportHdf with the object's name as
/// keyword when HDF5 refuses, ExportModule when there is no module.
class HdfFile {
 public:
  using Group = std::int64_t;
  static constexpr Group top = 0;

  explicit HdfFile(HdfStorage& storage);
  HdfFile(const HdfFile&) = delete;
  HdfFile& operator=(const HdfFile&) = delete;
  ~HdfFile();

  Group createGroup(Group parent, const std::string& name);
  void closeGroup(Group group);
  void setText(Group group, const char* name, const char* text);
  void setNumber(Group group, const char* name, std::int64_t number);
  void setNumbers(Group group, const char* name, std::span<const std::int64_t> numbers);
  /// Throws when a write has failed so far, with its position.
  void check();
  /// Writes what is kept back, closes the file and checks.
  void close();

  /// A complete dataset at once.
  template <class Number>
  void write(Group parent, const std::string& name, const std::vector<Number>& numbers,
             bool twoDimensional = false);

  /// A dataset of rows, written from its first row on.
  template <class Number>
  class Table {
   public:
    /// `rows`: how many there will be; below 0: it grows. `components`: numbers in each row.
    Table(HdfFile& file, Group parent, const std::string& name, std::int64_t rows,
          std::int64_t components = 1, bool twoDimensional = false)
        : file_(file),
          components_(components),
          table_(file.createTable(parent, name, typeOf(), rows, components, twoDimensional)) {}

    void append(std::span<const Number> numbers) {
      if (numbers.empty()) return;
      file_.append(table_, numbers.data(), numbers.size());
      rows_ += static_cast<std::int64_t>(numbers.size()) / components_;
    }
    std::int64_t rows() const { return rows_; }
    /// After the last row; throws when what was kept back cannot be written.
    void close() { file_.closeTable(table_); }

   private:
    static constexpr lumbarn_hdf_type typeOf() {
      if constexpr (std::is_same_v<Number, float>) return LUMBARN_HDF_FLOAT32;
      if constexpr (std::is_same_v<Number, double>) return LUMBARN_HDF_FLOAT64;
      if constexpr (std::is_same_v<Number, std::int32_t>) return LUMBARN_HDF_INT32;
      if constexpr (std::is_same_v<Number, std::int64_t>) return LUMBARN_HDF_INT64;
      static_assert(std::is_floating_point_v<Number> || std::is_integral_v<Number>);
      return LUMBARN_HDF_UINT8;
    }

    HdfFile& file_;
    std::int64_t components_;
    std::int64_t table_;
    std::int64_t rows_ = 0;
  };

 private:
  std::int64_t createTable(Group parent, const std::string& name, lumbarn_hdf_type type, std::int64_t rows,
                           std::int64_t components, bool twoDimensional);
  void append(std::int64_t table, const void* numbers, std::size_t count);
  void closeTable(std::int64_t table);
  std::int64_t checked(std::int64_t result);

  const lumbarn_hdf_functions& hdf_;
  HdfStorage& target_;
  lumbarn_hdf_file* file_;
};

template <class Number>
void HdfFile::write(Group parent, const std::string& name, const std::vector<Number>& numbers,
                    bool twoDimensional) {
  Table<Number> table(*this, parent, name, static_cast<std::int64_t>(numbers.size()), 1, twoDimensional);
  table.append(numbers);
  table.close();
}

}  // namespace lumbarn
