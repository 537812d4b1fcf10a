#include "vexapp/SyntaxHighlighter.h"

#include "engine/syntax/SyntaxTokens.h"

namespace {

struct Look {
  QRgb light;
  QRgb dark;
  bool bold;
  bool italic;
};

Look LookOf(SYNTAXTOKEN::Kind kind) {
  switch (kind) {
    case SYNTAXTOKEN::Kind::Comment:
      return {0xff6b7480, 0xff8b949f, false, true};
    case SYNTAXTOKEN::Kind::Command:
      return {0xff1d5fa8, 0xff78b4f5, true, false};
    case SYNTAXTOKEN::Kind::Keyword:
      return {0xff7b3fa0, 0xffc99bea, false, false};
    case SYNTAXTOKEN::Kind::Name:
      return {0xff2e6b34, 0xff8fce94, false, false};
    case SYNTAXTOKEN::Kind::Number:
      return {0xff8a5a00, 0xffe7b35a, false, false};
    case SYNTAXTOKEN::Kind::Unknown:
      break;
  }
  return {0xffb3261e, 0xffff8d85, false, false};
}

// As many bytes as characters: only ASCII has a meaning in the grammar.
std::string PlainText(const QString& text) {
  std::string plain;
  plain.reserve(static_cast<std::size_t>(text.size()));
  for (const QChar c : text) {
    plain += c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : 'x';
  }
  return plain;
}

}  // namespace

CSyntaxHighlighter::CSyntaxHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {}

void CSyntaxHighlighter::SetDark(bool dark) {
  if (dark == dark_) return;
  dark_ = dark;
  rehighlight();
}

void CSyntaxHighlighter::highlightBlock(const QString& text) {
  for (const SYNTAXTOKEN& token : SyntaxTokens(PlainText(text))) {
    const Look look = LookOf(token.kind);
    QTextCharFormat format;
    format.setForeground(QColor(dark_ ? look.dark : look.light));
    if (look.bold) format.setFontWeight(QFont::Bold);
    format.setFontItalic(look.italic);
    if (token.kind == SYNTAXTOKEN::Kind::Unknown) {
      format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
      format.setUnderlineColor(format.foreground().color());
    }
    setFormat(static_cast<int>(token.begin), static_cast<int>(token.size), format);
  }
}
