// What libwps tells about a spreadsheet, as far as nobody listens.
#pragma once

#include <librevenge/librevenge.h>

namespace statrn32 {

// A derived class overrides what it needs.
class CQuietListener : public librevenge::RVNGSpreadsheetInterface {
 public:
  using LIST = librevenge::RVNGPropertyList;

  void setDocumentMetaData(const LIST&) override {}
  void startDocument(const LIST&) override {}
  void endDocument() override {}
  void definePageStyle(const LIST&) override {}
  void defineEmbeddedFont(const LIST&) override {}
  void openPageSpan(const LIST&) override {}
  void closePageSpan() override {}
  void openHeader(const LIST&) override {}
  void closeHeader() override {}
  void openFooter(const LIST&) override {}
  void closeFooter() override {}
  void defineSheetNumberingStyle(const LIST&) override {}
  void openSheet(const LIST&) override {}
  void closeSheet() override {}
  void openSheetRow(const LIST&) override {}
  void closeSheetRow() override {}
  void openSheetCell(const LIST&) override {}
  void closeSheetCell() override {}
  void defineChartStyle(const LIST&) override {}
  void openChart(const LIST&) override {}
  void closeChart() override {}
  void openChartTextObject(const LIST&) override {}
  void closeChartTextObject() override {}
  void openChartPlotArea(const LIST&) override {}
  void closeChartPlotArea() override {}
  void insertChartAxis(const LIST&) override {}
  void openChartSerie(const LIST&) override {}
  void closeChartSerie() override {}
  void defineParagraphStyle(const LIST&) override {}
  void openParagraph(const LIST&) override {}
  void closeParagraph() override {}
  void defineCharacterStyle(const LIST&) override {}
  void openSpan(const LIST&) override {}
  void closeSpan() override {}
  void openLink(const LIST&) override {}
  void closeLink() override {}
  void defineSectionStyle(const LIST&) override {}
  void openSection(const LIST&) override {}
  void closeSection() override {}
  void insertTab() override {}
  void insertSpace() override {}
  void insertText(const librevenge::RVNGString&) override {}
  void insertLineBreak() override {}
  void insertField(const LIST&) override {}
  void openOrderedListLevel(const LIST&) override {}
  void openUnorderedListLevel(const LIST&) override {}
  void closeOrderedListLevel() override {}
  void closeUnorderedListLevel() override {}
  void openListElement(const LIST&) override {}
  void closeListElement() override {}
  void openFootnote(const LIST&) override {}
  void closeFootnote() override {}
  void openComment(const LIST&) override {}
  void closeComment() override {}
  void openFrame(const LIST&) override {}
  void closeFrame() override {}
  void insertBinaryObject(const LIST&) override {}
  void openTextBox(const LIST&) override {}
  void closeTextBox() override {}
  void openTable(const LIST&) override {}
  void openTableRow(const LIST&) override {}
  void closeTableRow() override {}
  void openTableCell(const LIST&) override {}
  void closeTableCell() override {}
  void insertCoveredTableCell(const LIST&) override {}
  void closeTable() override {}
  void openGroup(const LIST&) override {}
  void closeGroup() override {}
  void defineGraphicStyle(const LIST&) override {}
  void drawRectangle(const LIST&) override {}
  void drawEllipse(const LIST&) override {}
  void drawPolygon(const LIST&) override {}
  void drawPolyline(const LIST&) override {}
  void drawPath(const LIST&) override {}
  void drawConnector(const LIST&) override {}
  void insertEquation(const LIST&) override {}
};

}  // namespace statrn32
