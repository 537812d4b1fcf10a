// What export writes, import reads back bit for bit.
#include <bit>
#include <random>

#include "transfer/TextImportFixture.h"

namespace {

std::vector<std::vector<std::uint64_t>> Bits(const std::vector<std::vector<double>>& rows) {
  std::vector<std::vector<std::uint64_t>> bits;
  for (const auto& row : rows) {
    auto& line = bits.emplace_back();
    for (const double value : row) line.push_back(std::bit_cast<std::uint64_t>(value));
  }
  return bits;
}

double AnyValue(std::mt19937_64& random) {
  const std::uint64_t bits = random();
  const auto scale = [&] { return std::pow(10.0, static_cast<double>(random() % 20) - 10); };
  switch (bits % 5) {
    case 0:
      return static_cast<double>(bits >> 60);
    case 1:
      return static_cast<double>(static_cast<std::int64_t>(random()) >> 12);
    case 2:
      return static_cast<double>(random() % 1'000'000) / 1000 * scale();
    case 3:
      return -static_cast<double>(random()) * scale();
    default: {
      const double any = std::bit_cast<double>(random());
      return std::isfinite(any) ? any : -0.0;
    }
  }
}

}  // namespace

TEST_F(TextImportTest, ExportedNumbersComeBackBitForBit) {
  std::mt19937_64 random(5);
  for (const int type : {1001, 1002, 1003, 1005}) {
    for (const bool names : {false, true}) {
      for (const std::size_t columns : {1, 7}) {
        rows_t rows(3000, std::vector<double>(columns));
        for (auto& row : rows) {
          for (double& value : row) {
            const bool missing = type != 1002 && &row != &rows.front() && random() % 8 == 0;
            value = missing ? M : AnyValue(random);
          }
        }
        if (type == 1001 && columns == 1) continue;  // an empty line is no record there
        CDataDoc from;
        CDataView fromView(from);
        Fill(from, fromView, rows);
        from.SetExportNames(names);
        CString file = folder / "out.txt";
        int exportType = type;
        ASSERT_EQ(from.Export("/data/x.VSF", file, exportType), STUtils::eOK);
        ASSERT_TRUE(Import(ReadBytes(file), type)) << Reason();
        EXPECT_EQ(Bits(Rows()), Bits(rows)) << type << names << columns;
      }
    }
  }
}
