// Thousands of edits, undone and redone at random, against a plain model in memory: after each, the
// file of cells and the description must be those of the model.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "datadoc/DocumentFixture.h"
#include "datadoc/Missing.h"

namespace {

struct ModelVariable {
  int id = 0;  // stays with it, so that weight and group are known by it
  CString name;
  CString description;
  std::int32_t type = 0;
  MissingDefinition missing = kNoMissing;
  std::vector<std::pair<std::int32_t, CString>> categories;
};

struct Model {
  std::vector<ModelVariable> variables;
  std::vector<std::vector<double>> rows;
  GlobalMissingDefinition missing = kDefaultGlobalMissing;
  int weight = 0;  // an id; 0: none
  int group = 0;

  std::int32_t NumberOf(int id) const {
    for (std::size_t i = 0; i < variables.size(); ++i) {
      if (id != 0 && variables[i].id == id) return static_cast<std::int32_t>(i) + 1;
    }
    return 0;
  }
  std::int32_t Width() const { return static_cast<std::int32_t>(variables.size()); }
  std::int64_t Height() const { return static_cast<std::int64_t>(rows.size()); }
  void InsertColumns(std::size_t at, const std::vector<ModelVariable>& fresh) {
    variables.insert(variables.begin() + static_cast<std::ptrdiff_t>(at), fresh.begin(),
                     fresh.end());
    for (auto& row : rows)
      row.insert(row.begin() + static_cast<std::ptrdiff_t>(at), fresh.size(), 0.0);
    missing[kGlobalValue] = kMissingCode;
  }
  void EraseColumns(const std::vector<bool>& gone) {
    for (std::size_t i = gone.size(); i-- > 0;) {
      if (!gone[i]) continue;
      variables.erase(variables.begin() + static_cast<std::ptrdiff_t>(i));
      for (auto& row : rows) row.erase(row.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
};

}  // namespace

class EditModel : public DocumentTest {
 public:
  int Below(std::int64_t end) {
    return static_cast<int>(random() % static_cast<std::uint64_t>(end));
  }
  double AnyValue() {
    static constexpr double kSpecial[] = {
        kMissingCode, 9, kNotSet, 0.1, -0.0, 1e300, std::numeric_limits<double>::quiet_NaN()};
    return Below(4) == 0 ? kSpecial[Below(std::size(kSpecial))] : Below(5);
  }

  void Start() {
    Fill({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {2, 2, 2}});
    for (int i = 0; i < 3; ++i) {
      auto& variable = document.GetTorvik()->variable[static_cast<std::size_t>(i)];
      variable.description = "about " + variable.name;
      ModelVariable copy;
      copy.id = ++lastId;
      copy.name = variable.name;
      copy.description = variable.description;
      model.variables.push_back(copy);
    }
    model.rows = Rows();
    ASSERT_EQ(document.SaveVSFFile(folder / "model.VSF", kNewFormat), 1);
    document.GetTorvik()->format = kNewFormat;
    document.SetPathName(folder / "model.VSF");
  }

  void Compare(const CString& what) {
    const TORVIKSTRUCT& data = *document.GetTorvik();
    ASSERT_EQ(data.variables, model.Width()) << what;
    ASSERT_EQ(data.records, model.Height()) << what;
    ASSERT_EQ(data.weightVariable, model.NumberOf(model.weight)) << what;
    ASSERT_EQ(data.groupVariable, model.NumberOf(model.group)) << what;
    ASSERT_EQ(data.missing, model.missing) << what;
    for (std::size_t i = 0; i < model.variables.size(); ++i) {
      const ModelVariable& expected = model.variables[i];
      const VARSTRUCT& variable = data.variable[i];
      ASSERT_EQ(variable.name, expected.name) << what;
      ASSERT_EQ(variable.description, expected.description) << what;
      ASSERT_EQ(variable.type, expected.type) << what;
      ASSERT_EQ(variable.missing, expected.missing) << what;
      ASSERT_EQ(static_cast<std::size_t>(variable.categories), expected.categories.size()) << what;
      for (std::size_t k = 0; k < expected.categories.size(); ++k) {
        const std::size_t slot = i * kCategorySlots + k;
        ASSERT_EQ(data.categoryValues[slot], expected.categories[k].first) << what;
        ASSERT_EQ(data.categoryLabels[slot], expected.categories[k].second) << what;
      }
    }
    std::string cells;
    for (const auto& row : model.rows) {
      cells.append(reinterpret_cast<const char*>(row.data()), row.size() * sizeof(double));
    }
    ASSERT_TRUE(ReadBytes(view.GetScratchFileName()) == cells) << what;
  }

  // Each changes the model and the view alike and says whether there was a step.
  bool Cell() {
    if (model.rows.empty()) return false;
    const TableCell cell{Below(model.Height()), Below(model.Width())};
    const double value = AnyValue();
    At(cell) = value;
    return view.CommitValue(cell, value);
  }
  bool Paste() {
    if (model.rows.empty()) return false;
    const TableCell at{Below(model.Height()), Below(model.Width())};
    CString text;
    const int rows = 1 + Below(6);
    const int columns = 1 + Below(4);
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        const int value = Below(100);
        text += std::to_string(value) + (column + 1 < columns ? "\t" : "\n");
        const TableCell cell{at.row + row, at.column + column};
        if (cell.row < model.Height() && cell.column < model.Width()) At(cell) = value;
      }
    }
    return !view.PasteBlock(at, text).IsEmpty();
  }
  bool Clear() {
    if (model.rows.empty()) return false;
    CellRange range;
    range.rowBegin = Below(model.Height());
    range.rowEnd = range.rowBegin + 1 + Below(model.Height() - range.rowBegin);
    range.columnBegin = Below(model.Width());
    range.columnEnd = range.columnBegin + 1 + Below(model.Width() - range.columnBegin);
    for (auto row = range.rowBegin; row < range.rowEnd; ++row) {
      for (int c = range.columnBegin; c < range.columnEnd; ++c) At({row, c}) = kMissingCode;
    }
    return view.ClearCells(range);
  }
  bool InsertCases() {
    const int at = Below(model.Height() + 1);
    const int count = 1 + Below(4);
    model.rows.insert(model.rows.begin() + at, static_cast<std::size_t>(count),
                      std::vector<double>(model.variables.size(), 0.0));
    return view.InsertCases(at, count);
  }
  bool DeleteCases() {
    const int first = Below(model.Height() + 1);
    const int end = first + Below(5);
    const auto last = std::min<std::int64_t>(end, model.Height());
    model.rows.erase(model.rows.begin() + first, model.rows.begin() + last);
    return view.DeleteCases(first, end);
  }
  bool InsertVariables() {
    const int at = Below(model.Width() + 1);
    const int count = 1 + Below(10);
    std::vector<ModelVariable> fresh(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      fresh[static_cast<std::size_t>(i)].name = "var" + std::to_string(model.Width() + 1 + i);
      fresh[static_cast<std::size_t>(i)].id = ++lastId;
    }
    model.InsertColumns(static_cast<std::size_t>(at), fresh);
    return view.InsertVariables(at, count);
  }
  bool DeleteVariables() {
    std::vector<bool> gone(model.variables.size());
    std::vector<std::int32_t> list;
    for (std::size_t i = 0; i + 1 < gone.size(); ++i) {
      gone[i] = Below(3) == 0;
      if (gone[i]) list.insert(list.begin(), static_cast<std::int32_t>(i));
    }
    model.EraseColumns(gone);
    return view.DeleteVariables(list);
  }
  bool Sort() {
    const int key = Below(model.Width());
    const bool descending = Below(2) == 1;
    std::stable_sort(model.rows.begin(), model.rows.end(), [&](const auto& a, const auto& b) {
      const double x = a[static_cast<std::size_t>(key)];
      const double y = b[static_cast<std::size_t>(key)];
      if (std::isnan(x) || std::isnan(y)) return !std::isnan(x) && std::isnan(y);
      return descending ? y < x : x < y;
    });
    return view.OnSortCases({key, descending ? kSortDescending : kSortAscending});
  }
  bool Select() {
    const auto key = static_cast<std::size_t>(Below(model.Width()));
    const bool removes = model.Width() > 1 && Below(2) == 1;
    const int limit = Below(6);
    const TORVIKSTRUCT data = *document.GetTorvik();
    std::erase_if(model.rows, [&](const auto& row) {
      const bool holds = row[key] > limit && !IsMissingCell(data, row[key], key);
      return holds == removes;
    });
    std::vector<bool> gone(model.variables.size());
    gone[key] = removes;
    model.EraseColumns(gone);
    const CString word = removes ? "SD " : "SC ";
    return view.ApplySelection(
        {word + std::to_string(key + 1) + " > " + std::to_string(limit), "OU XM"});
  }
  bool Define() {
    std::int32_t capacity = 0;
    const int added = Below(2) == 0 ? 0 : Below(9);
    const auto copy = document.GetTorvikCopy(capacity, model.Width() + added);
    std::vector<ModelVariable> fresh(static_cast<std::size_t>(added));
    for (int i = 0; i < added; ++i) {
      ModelVariable& variable = fresh[static_cast<std::size_t>(i)];
      variable.id = ++lastId;
      variable.name = "new" + std::to_string(lastId);
      copy->variable[static_cast<std::size_t>(model.Width() + i)].name = variable.name;
    }
    const auto index = static_cast<std::size_t>(Below(model.Width()));
    ModelVariable& changed = model.variables[index];
    changed.name = "r" + std::to_string(Below(1000));
    changed.type = Below(5);
    changed.missing[0] = Below(10);
    changed.categories.clear();
    for (int k = Below(16); k > 0; --k) changed.categories.push_back({k, "L" + std::to_string(k)});
    copy->variable[index].name = changed.name;
    copy->variable[index].type = changed.type;
    copy->variable[index].missing = changed.missing;
    copy->variable[index].categories = static_cast<std::int32_t>(changed.categories.size());
    for (std::size_t k = 0; k < changed.categories.size(); ++k) {
      copy->categoryValues[index * kCategorySlots + k] = changed.categories[k].first;
      copy->categoryLabels[index * kCategorySlots + k] = changed.categories[k].second;
    }
    copy->missing[0] = model.missing[0] = Below(3) == 0 ? 9 : kNotSet;
    model.InsertColumns(model.variables.size(), fresh);
    return view.UpdateDefinition(*copy);
  }
  bool Choose() {
    if (model.rows.empty()) return false;  // such a data set cannot be saved
    const auto& chosen = model.variables[static_cast<std::size_t>(Below(model.Width()))];
    const std::int32_t number = model.NumberOf(chosen.id);
    const bool weight = Below(2) == 0;
    (weight ? model.weight : model.group) = chosen.id;
    return weight ? view.ChooseWeightVariable(number) : view.ChooseGroupVariable(number);
  }

  double& At(const TableCell& cell) {
    return model.rows[static_cast<std::size_t>(cell.row)][static_cast<std::size_t>(cell.column)];
  }

  // Weight and group go with their variable.
  void DropLostChoices() {
    if (model.NumberOf(model.weight) == 0) model.weight = 0;
    if (model.NumberOf(model.group) == 0) model.group = 0;
  }

  std::mt19937_64 random{20240607};
  Model model;
  int lastId = 0;
};

TEST_F(EditModel, ThousandsOfEditsUndoneAndRedone) {
  ASSERT_NO_FATAL_FAILURE(Start());
  using Operation = bool (EditModel::*)();
  const struct {
    const char* name;
    Operation run;
    int weight;
  } operations[] = {{"cell", &EditModel::Cell, 20},
                    {"paste", &EditModel::Paste, 10},
                    {"clear", &EditModel::Clear, 4},
                    {"insert cases", &EditModel::InsertCases, 12},
                    {"delete cases", &EditModel::DeleteCases, 8},
                    {"insert variables", &EditModel::InsertVariables, 4},
                    {"delete variables", &EditModel::DeleteVariables, 4},
                    {"sort", &EditModel::Sort, 6},
                    {"select", &EditModel::Select, 3},
                    {"define", &EditModel::Define, 8},
                    {"choose", &EditModel::Choose, 1}};
  std::vector<std::size_t> dice;
  for (std::size_t i = 0; i < std::size(operations); ++i) {
    dice.insert(dice.end(), static_cast<std::size_t>(operations[i].weight), i);
  }
  std::vector<Model> history{model};
  std::size_t place = 0;
  int steps = 0;
  for (int i = 0; i < 3000; ++i) {
    const int kind = Below(10);
    CString what = std::to_string(i) + " ";
    if (kind < 3 && place > 0) {
      what += "undo " + view.UndoText();
      ASSERT_TRUE(view.Undo()) << what;
      model = history[--place];
    } else if (kind < 5 && place + 1 < history.size()) {
      what += "redo " + view.RedoText();
      ASSERT_TRUE(view.Redo()) << what;
      model = history[++place];
    } else {
      const auto& operation =
          operations[dice[static_cast<std::size_t>(Below(static_cast<std::int64_t>(dice.size())))]];
      what += operation.name;
      if ((this->*operation.run)()) {
        DropLostChoices();
        history.resize(++place);
        history.push_back(model);
        ++steps;
      }
    }
    ASSERT_EQ(view.CanUndo(), place > 0) << what;
    ASSERT_EQ(view.CanRedo(), place + 1 < history.size()) << what;
    ASSERT_NO_FATAL_FAILURE(Compare(what));
  }
  EXPECT_GT(steps, 1200);
  while (place > 0) {
    ASSERT_TRUE(view.Undo());
    model = history[--place];
  }
  Compare("all undone");
  EXPECT_TRUE(host.messages.empty()) << host.LastMessage();
}
