#include "statrn32/CompoundFile.h"

#include <cerrno>
#include <cstring>

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>
#include <gsf/gsf.h>

#include "statrn32/InputFile.h"

namespace statrn32 {
namespace {

void BeginGsf() {
  static const bool begun = [] {
    gsf_init();
    // Its remarks on damaged files belong to nobody: we say what is wrong.
    g_log_set_handler(
        nullptr, G_LOG_LEVEL_WARNING, [](auto...) {}, nullptr);
    g_log_set_handler(
        "libgsf:msole", G_LOG_LEVEL_MASK, [](auto...) {}, nullptr);
    g_log_set_handler(
        "libgsf", G_LOG_LEVEL_MASK, [](auto...) {}, nullptr);
    return true;
  }();
  static_cast<void>(begun);
}

std::string TakeMessage(GError* error) {
  std::string text = error != nullptr ? error->message : "unknown error";
  if (error != nullptr) g_error_free(error);
  return text;
}

// The child that `path` names; the caller gives the reference back. Null when there is none.
GsfInput* FindChild(GsfInfile* root, const std::string& path) {
  GsfInput* child = GSF_INPUT(g_object_ref(root));
  std::size_t begin = 0;
  while (child != nullptr && begin < path.size()) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string name = path.substr(begin, end - begin);
    GsfInput* next = nullptr;
    if (GSF_IS_INFILE(child)) next = gsf_infile_child_by_name(GSF_INFILE(child), name.c_str());
    g_object_unref(child);
    child = next;
    begin = end + 1;
  }
  return child;
}

}  // namespace

CCompoundFile::~CCompoundFile() {
  if (root_ != nullptr) g_object_unref(root_);
}

bool CCompoundFile::Open(const std::string& name, std::string* error) {
  BeginGsf();
  CInputFile file;
  if (!file.Open(name)) {
    *error = std::strerror(errno);
    return false;
  }
  bytes_.resize(static_cast<std::size_t>(file.Size()));
  if (file.Read(bytes_.data(), file.Size()) != file.Size()) {
    *error = "the file cannot be read";
    return false;
  }
  GsfInput* const input = gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes_.data()),
                                               static_cast<gsf_off_t>(bytes_.size()), FALSE);
  GError* failed = nullptr;
  root_ = gsf_infile_msole_new(input, &failed);
  g_object_unref(input);
  if (root_ == nullptr) *error = "the compound file is damaged: " + TakeMessage(failed);
  return root_ != nullptr;
}

std::vector<std::string> CCompoundFile::Names(const std::string& path) const {
  std::vector<std::string> names;
  GsfInput* const storage = root_ != nullptr ? FindChild(root_, path) : nullptr;
  if (storage == nullptr) return names;
  const int count = GSF_IS_INFILE(storage) ? gsf_infile_num_children(GSF_INFILE(storage)) : 0;
  for (int i = 0; i < count; ++i) {
    const char* const name = gsf_infile_name_by_index(GSF_INFILE(storage), i);
    if (name != nullptr) names.emplace_back(name);
  }
  g_object_unref(storage);
  return names;
}

bool CCompoundFile::ReadStream(const std::string& path, std::string* out) const {
  GsfInput* const stream = root_ != nullptr ? FindChild(root_, path) : nullptr;
  if (stream == nullptr) return false;
  const gsf_off_t size = gsf_input_size(stream);
  bool done = size >= 0 && static_cast<std::size_t>(size) <= bytes_.size();
  if (done) {
    out->resize(static_cast<std::size_t>(size));
    done = size == 0 || gsf_input_read(stream, static_cast<std::size_t>(size),
                                       reinterpret_cast<guint8*>(out->data())) != nullptr;
  }
  g_object_unref(stream);
  return done;
}

CCompoundWriter::~CCompoundWriter() {
  Close();
}

bool CCompoundWriter::Create(const std::string& name, const char* stream, std::string* error) {
  BeginGsf();
  GError* failed = nullptr;
  FILE* const file = std::fopen(name.c_str(), "wb");
  if (file == nullptr) {
    *error = std::strerror(errno);
    return false;
  }
  file_ = gsf_output_stdio_new_FILE(name.c_str(), file, FALSE);
  if (file_ == nullptr) {
    *error = TakeMessage(failed);
    return false;
  }
  root_ = gsf_outfile_msole_new(file_);
  stream_ = gsf_outfile_new_child(root_, stream, FALSE);
  return stream_ != nullptr;
}

bool CCompoundWriter::Write(std::string_view bytes) {
  failed_ = failed_ || stream_ == nullptr ||
            gsf_output_write(stream_, bytes.size(),
                             reinterpret_cast<const guint8*>(bytes.data())) == FALSE;
  return !failed_;
}

bool CCompoundWriter::Close() {
  const auto close = [&](GsfOutput* output) {
    if (output == nullptr) return;
    if (gsf_output_is_closed(output) == FALSE && gsf_output_close(output) == FALSE) failed_ = true;
    g_object_unref(output);
  };
  close(stream_);
  close(root_ != nullptr ? GSF_OUTPUT(root_) : nullptr);
  close(file_);
  stream_ = nullptr;
  root_ = nullptr;
  file_ = nullptr;
  return !failed_;
}

}  // namespace statrn32
