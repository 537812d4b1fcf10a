#include "statrn32/ZipFile.h"

#include <algorithm>
#include <array>
#include <zip.h>
#include <zlib.h>

#include "statrn32/ByteWriter.h"

namespace statrn32 {
namespace {

// No sheet packs better than this; what does was made to fill memories.
constexpr std::uint64_t kLargestRatio = 400;
constexpr std::uint64_t kAlwaysAllowed = 1 << 20;
constexpr std::uint64_t kLargestArchive = 0xFFFFFFFF;

}  // namespace

CZipFile::~CZipFile() {
  if (archive_ != nullptr) zip_discard(archive_);
}

bool CZipFile::Open(const std::string& name, std::string* error) {
  int code = 0;
  archive_ = zip_open(name.c_str(), ZIP_RDONLY, &code);
  if (archive_ != nullptr) return true;
  zip_error_t failed;
  zip_error_init_with_code(&failed, code);
  *error = std::string("the package cannot be opened: ") + zip_error_strerror(&failed);
  zip_error_fini(&failed);
  return false;
}

bool CZipFile::Has(const std::string& part) const {
  return archive_ != nullptr && zip_name_locate(archive_, part.c_str(), 0) >= 0;
}

bool CZipFile::ReadPart(const std::string& part,
                        const std::function<bool(const READ&)>& use) const {
  zip_stat_t about;
  if (archive_ == nullptr || zip_stat(archive_, part.c_str(), 0, &about) != 0) return false;
  zip_file_t* const file = zip_fopen(archive_, part.c_str(), 0);
  if (file == nullptr) return false;
  std::uint64_t allowed = about.comp_size * kLargestRatio + kAlwaysAllowed;
  const READ read = [&](char* to, int size) {
    const zip_int64_t got = zip_fread(file, to, static_cast<zip_uint64_t>(size));
    if (got < 0 || static_cast<std::uint64_t>(got) > allowed) return -1;
    allowed -= static_cast<std::uint64_t>(got);
    return static_cast<int>(got);
  };
  const bool done = use(read);
  zip_fclose(file);
  return done;
}

CZipWriter::~CZipWriter() {
  if (packer_ == nullptr) return;
  deflateEnd(packer_);
  delete packer_;
}

bool CZipWriter::Put(std::string_view bytes) {
  position_ += bytes.size();
  return file_->Write(bytes.data(), bytes.size());
}

// Sizes and check sum of a packed part stand behind it.
bool CZipWriter::PutHeader(const PART& part) {
  constexpr unsigned kVersion = 20;
  constexpr unsigned kSizesBehind = 8;
  constexpr unsigned kDeflated = 8;
  constexpr unsigned kDate = 0x21;  // 1980-01-01
  CByteWriter out;
  out.U32(0x04034B50).U16(kVersion).U16(part.stored ? 0 : kSizesBehind);
  out.U16(part.stored ? 0 : kDeflated).U16(0).U16(kDate);
  out.U32(part.crc).U32(part.packed).U32(part.size).U16(part.name.size()).U16(0).Bytes(part.name);
  return Put(out.Data());
}

bool CZipWriter::Store(const std::string& name, std::string_view bytes) {
  PART part;
  part.name = name;
  part.begin = position_;
  part.stored = true;
  part.size = part.packed = bytes.size();
  part.crc = static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
  parts_.push_back(part);
  return PutHeader(part) && Put(bytes);
}

bool CZipWriter::Begin(const std::string& name) {
  constexpr int kNoZlibHeader = -15;
  constexpr int kMemory = 8;
  PART part;
  part.name = name;
  part.begin = position_;
  parts_.push_back(part);
  if (packer_ == nullptr) {
    packer_ = new z_stream{};
    if (deflateInit2(packer_, Z_BEST_SPEED, Z_DEFLATED, kNoZlibHeader, kMemory,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
      return false;
    }
  } else {
    deflateReset(packer_);
  }
  return PutHeader(part);
}

bool CZipWriter::Write(std::string_view bytes) {
  PART& part = parts_.back();
  part.crc = static_cast<std::uint32_t>(crc32(
      part.crc, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
  part.size += bytes.size();
  return Pack(bytes, false);
}

bool CZipWriter::Pack(std::string_view bytes, bool last) {
  std::array<char, 1 << 16> packed;
  packer_->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  packer_->avail_in = static_cast<uInt>(bytes.size());
  do {
    packer_->next_out = reinterpret_cast<Bytef*>(packed.data());
    packer_->avail_out = packed.size();
    deflate(packer_, last ? Z_FINISH : Z_NO_FLUSH);
    const std::size_t made = packed.size() - packer_->avail_out;
    parts_.back().packed += made;
    if (!Put({packed.data(), made})) return false;
  } while (packer_->avail_out == 0);
  return true;
}

bool CZipWriter::End() {
  if (!Pack({}, true)) return false;
  const PART& part = parts_.back();
  CByteWriter out;
  out.U32(0x08074B50).U32(part.crc).U32(part.packed).U32(part.size);
  return Put(out.Data());
}

bool CZipWriter::Finish() {
  const std::uint64_t begin = position_;
  for (const PART& part : parts_) {
    if (part.size > kLargestArchive) return false;
    CByteWriter out;
    out.U32(0x02014B50).U16(20).U16(20).U16(part.stored ? 0 : 8).U16(part.stored ? 0 : 8);
    out.U16(0).U16(0x21).U32(part.crc).U32(part.packed).U32(part.size).U16(part.name.size());
    out.Zeros(12).U32(part.begin).Bytes(part.name);
    if (!Put(out.Data())) return false;
  }
  const std::uint64_t bytes = position_ - begin;
  CByteWriter end;
  end.U32(0x06054B50).U32(0).U16(parts_.size()).U16(parts_.size()).U32(bytes).U32(begin).U16(0);
  return position_ <= kLargestArchive && Put(end.Data());
}

}  // namespace statrn32
