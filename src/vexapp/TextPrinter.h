// Text in a fixed font on pages: for the printer, its preview and PDF files.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>

class QPagedPaintDevice;
class QPrinter;

struct TEXTTOPRINT {
  QString title;  // at the head of each page
  std::int64_t lines = 0;
  std::function<QString(std::int64_t line)> line;  // counted from 0
  std::int64_t longest = 0;                        // characters of the longest line
};

// Sets the text so that its longest line fits (up to 132 characters; what is longer goes on in the
// next line), page numbers at the foot. `first` and `last` are pages counted from 1; 0: all.
// False when the device cannot be painted on.
bool PrintText(QPagedPaintDevice& device, const TEXTTOPRINT& text, int first = 0, int last = 0);

// As the printer's dialog chose the pages.
bool PrintChosenPages(QPrinter& printer, const TEXTTOPRINT& text);

// Writes a PDF file in place of `path`; false, with the reason, when that was not possible. The old
// file then stands.
bool WritePdf(const QString& path, const TEXTTOPRINT& text, QString& reason);
