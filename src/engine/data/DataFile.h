// The system data file of a run.
#pragma once

#include "datadoc/VsfReader.h"
#include "engine/Fault.h"
#include "vexutils/BlockIo.h"

// The file that stands for `name`: itself, or when it is absent the one file of the same name whose
// extension differs only in case. The name is returned as it stands when there is no such file, or
// more than one.
CString ExistingDataFile(const CString& name);

class CDataFile {
 public:
  // Opens the file and reads its description. Returns false with cause and remedy in `fault`.
  bool Open(const CString& name, FAULT& fault);

  const CString& Name() const { return name_; }
  const VsfContents& Contents() const { return contents_; }
  const TORVIKSTRUCT& Data() const { return contents_.data; }
  std::int64_t Records() const { return contents_.data.records; }

  // Reads records, counted from 0, row after row; cells that the file lacks at its end are NaN. May
  // be called from several threads. Returns false with the reason in errno.
  bool ReadRecords(std::int64_t first, std::int64_t count, double* cells) const;

 private:
  CString name_;
  CDescriptor file_;
  VsfContents contents_;
};
