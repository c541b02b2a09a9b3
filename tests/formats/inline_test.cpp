#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "formats/inline_markdown.h"
#include "tests/formats/support.h"

namespace vell::formats {
namespace {

/// Runs in short: plain ones as they are, styled ones as {text|key key=value}.
std::string runsOf(const Text& text) {
  std::string runs;
  text.forEachRun([&](std::string_view string, const Attributes& style) {
    if (style.empty()) return void(runs += string);
    runs.append("{").append(string);
    char before = '|';
    for (const Attribute& entry : style) {
      runs += before + entry.key + (entry.value.empty() ? "" : "=" + entry.value);
      before = ' ';
    }
    runs += '}';
  });
  return runs;
}

struct InlineCase {
  const char* source;
  const char* runs;     ///< null: as the source
  const char* written;  ///< null: as the source
};

const InlineCase inlineCases[] = {
    // Text keeps what only looks like markup, without escapes.
    {"", nullptr, nullptr},
    {"a * b ** c _ d == e ~x~ ~~~ y~~", nullptr, nullptr},
    {"snake_case [note] & (x) 2*3 {{ x }} [ ] 5 < 6 AT&T", nullptr, nullptr},
    {"**open _only `code C:\\dir \\q", nullptr, nullptr},
    {"[a]{#x} [b]{} [](u) ](u) [a][b] [^1] [[wiki]] [a] (b) x", nullptr, nullptr},
    {"&amp; &#; &#xD800; &#99999999; &copy;", nullptr, nullptr},
    // Text that would be markup is escaped, and only that.
    {R"(\*a\* \\* \`b\` \[a](u) \<b@c.d> \&#10; \\_a_)", "*a* \\* `b` [a](u) <b@c.d> &#10; \\{a|em}",
     nullptr},
    {R"(\~\~\~ a\\)", "~~~ a\\", nullptr},
    {R"(\a \_a \*\*b)", "\\a _a **b", R"(\a _a **b)"},
    {"a {x=y\\}", "a {x=y}", nullptr},
    {"a&#10;b&#x41;&#32;", "a\nbA ", "a&#10;bA&#32;"},
    // Each mark.
    {"**b** _i_ ~~s~~ ==m== `c`", "{b|strong} {i|em} {s|s} {m|mark} {c|code}", nullptr},
    {"*i* __b__", "{i|em} {b|strong}", "_i_ **b**"},
    {"``a`b`` ` `` `", "{a`b|code} {``|code}", "``a`b`` ``` `` ```"},
    {"` a` `  ` `\\`", "{ a|code} {  |code} {\\|code}", nullptr},
    // Marks pair as CommonMark has it.
    {"***x*** a**b**c a*b*c a_b_c", "{x|em strong} a{b|strong}c a{b|em}c a_b_c",
     "**_x_** a**b**c a*b*c a_b_c"},
    {"**a _b_ c** *a **b** c*", "{a |strong}{b|em strong}{ c|strong} {a |em}{b|em strong}{ c|em}",
     "**a _b_ c** _a **b** c_"},
    {"**a _b** c_", "{a _b|strong} c_", nullptr},
    {"*a**b*", "{a**b|em}", "_a**b_"},
    {"**a*b *c**d* e", "{a*b *c|strong}d* e", "**a*b *c**d* e"},
    {"a*\"b\"* a_\"b\"_ *(*a*)*", "a*\"b\"* a_\"b\"_ {(a)|em}", "a*\"b\"* a_\"b\"_ _(a)_"},
    {"\xE2\x80\x9C**a**\xE2\x80\x9D a\xC2\xA0*\xC2\xA0"
     "b*",
     "\xE2\x80\x9C{a|strong}\xE2\x80\x9D a\xC2\xA0*\xC2\xA0"
     "b*",
     nullptr},
    {"*a `*` <i x=\"*\"> [b*](u) c*", "{a |em}{*|code em}{ <i x=\"*\"> |em}{b*|a=u em}{ c|em}",
     "_a `*` <i x=\"*\"> [b*](u) c_"},
    // Links and lists of attributes.
    {"[**a** b](http://x/y_(z)w)", "{a|a=http://x/y_(z)w strong}{ b|a=http://x/y_(z)w}",
     "[**a** b](<http://x/y_(z)w>)"},
    {"[a](<b c> \"t\") [a]( u\t't' ) [a](u (t)) [a](\\)\\a)",
     "{a|a=b c title=t} {a|a=u title=t} {a|a=u title=t} {a|a=)\\a}",
     "[a](<b c> \"t\") [a](u \"t\") [a](u \"t\") [a]{a=\")\\\\a\"}"},
    {"[a [b](u) c](v) [a](u v) [a](u \"t\"v)", "[a {b|a=u} c](v) [a](u v) [a](u \"t\"v)", nullptr},
    {"H[2]{base=sub}O [a](u){k=\"v w\"}", "H{2|base=sub}O {a|a=u k=v w}", nullptr},
    {"<http://a_b_c> <a.b@c-d.e> [u](u) <a@b",
     "{http://a_b_c|a=http://a_b_c} {a.b@c-d.e|a=mailto:a.b@c-d.e} {u|a=u} <a@b",
     "<http://a_b_c> [a.b@c-d.e](mailto:a.b@c-d.e) [u](u) <a@b"},
    // Images and html are text, and nothing in them is markup.
    {"![*a*](u 't') [![*b*](a)](c) ![](u) ![a][b]", "![*a*](u 't') {![*b*](a)|a=c} ![](u) ![a][b]", nullptr},
    {"<a b='*c*' d=_e_><!-- *f* --></a *g*> <?*h*?>", "<a b='*c*' d=_e_><!-- *f* --></a {g|em}> <?*h*?>",
     "<a b='*c*' d=_e_><!-- *f* --></a _g_> <?*h*?>"},
    {"<a b='\\*c\\*'> !\\[a](u)", "<a b='*c*'> ![a](u)", "<a b='*c*'> ![a](u)"},
    // Where marks cannot tell the style apart, brackets do.
    {"[ a ]{strong=\"\"} [x]{s=\"\"}[!\\]]{k=v}", "{ a |strong} {x|s}{!]|k=v}",
     "[ a ]{strong=\"\"} ~~x~~[!\\]]{k=v}"},
    {"[a]{em=\"\"}b **a***b*", "{a|em}b {a|strong}{b|em}", "*a*b **a**_b_"},
};

TEST(InlineMarkdown, ReadsAndWrites) {
  for (const InlineCase& row : inlineCases) {
    const Text text = parseInline(row.source);
    EXPECT_EQ(runsOf(text), row.runs ? row.runs : row.source) << row.source;
    std::string written;
    appendInline(written, text);
    EXPECT_EQ(written, row.written ? row.written : row.source);
    EXPECT_EQ(parseInline(written), text) << written;
  }
}

TEST(InlineMarkdown, JoinsTheLinesOfAParagraph) {
  const std::pair<const char*, const char*> cases[] = {
      {"a\nb \n  c", "a b c"},
      {"a  \nb\\\n c\\\\\nd", "a\nb\nc\\ d"},
      {"*a\nb* `c\n d` <e\nf> ![g\nh](u)", "{a b|em} {c d|code} <e f> ![g h](u)"},
      {"[a](u\n'b')", "{a|a=u title=b}"},
  };
  for (const auto& [source, runs] : cases) {
    EXPECT_EQ(runsOf(parseInline(source, LineFeeds::breaks)), runs);
  }
}

TEST(InlineMarkdown, TakesLinearTimeAndBoundedDepth) {
  for (const char* piece :
       {"[", "](", "](((", "]{a=\"", "**a ", "`", "_a*b~~", "[a](u ", "]{a=b ", "<!--", "<a b='", "!["}) {
    std::string source;
    for (int count = 0; count < 10'000; ++count) source += piece;
    std::string written;
    appendInline(written, parseInline(source));
    EXPECT_EQ(parseInline(written), parseInline(source)) << piece;
  }
}

struct RewriteCase {
  const char* source;
  const char* now;  ///< inline markup
  const char* written;
};

const RewriteCase rewriteCases[] = {
    {"*a* b", "_a_ c", "*a* c"},
    {"see [x](u 'T') and __b__", "see [x](u \"T\") and **b** more", "see [x](u 'T') and __b__ more"},
    {"a __bold word__ c", "a **bold thing** c", "a __bold thing__ c"},
    {"[old](u 't')", "[new](u \"t\")", "[new](u 't')"},
    {"__a__ *b* c", "x **a** y _b_ z", "x __a__ y *b* z"},
    // At the edge of a style what is added goes where its own style says.
    {"__a__", "**a b**", "__a b__"},
    {"__a__", "**a** b", "__a__ b"},
    {"__a__ *b*", "_b_", "*b*"},
    {"__a__", "a", "a"},
    {"__a b__", "**a** x **b**", "__a__ x __b__"},
    // What does not read back is written anew, up to the next blank.
    {"*c* _a_", "_c_ *a*b", "*c* *a*b"},
    {"*c* `ab` __d__", "_c_ ``a`b`` **d**", "*c* ``a`b`` __d__"},
    {"*c* <http://a.b> __d__", "_c_ [http://c.b](http://a.b) **d**", "*c* [http://c.b](http://a.b) __d__"},
    // Text is escaped where the change makes it markup.
    {"5*3 a", "5\\*3 a\\*", "5*3 a\\*"},
    {"a `b", "a \\`b\\`", "a \\`b\\`"},
    {"\\_x\\_ &#169; y", "\\_x\\_ \xC2\xA9 \\_y\\_", "\\_x\\_ &#169; \\_y\\_"},
    {"a b", "a&#32;", "a&#32;"},
    {"a", "a {x=y\\}", "a {x=y\\}"},
    // Of lines those stay that did not change.
    {"a\nb  \nc\nd", "a b&#10;c e", "a\nb  \nc\ne"},
    {"a b\nc", "a&#32;", "a&#32;"},
};

TEST(InlineMarkdown, RewritesWhatChanged) {
  for (const RewriteCase& row : rewriteCases) {
    const Text now = parseInline(row.now);
    EXPECT_EQ(rewriteInline(row.source, now, LineFeeds::breaks), row.written);
    EXPECT_EQ(parseInline(row.written, LineFeeds::breaks), now) << row.written;
  }
}

// clang-format off
constexpr std::string_view scraps[] = {
    "word", "two words", "*em*", "__strong__", "_a_", "***x***", "`code`", "`` a`b ``", "[l](u 'T')",
    "[l](<a b>)", "![i](j)", "[![b](a)](c)", "<http://a.b>", "<kbd>k</kbd>", "&copy;", "&#169;", "\\*",
    "[[w]]", "{{ t }}", "[a][b]", "~~s~~", "==m==", "[x]{k=v}", "*a **b** c*", "*", "**", "_", "`", "[",
    "](u)", "~~", "\xE2\x80\x9C", "\\", "<b", "a  \nb", "c\\\nd", "e\nf", " {a=b}", "!", "(x)",
};
// clang-format on

class InlineEdits {
 public:
  explicit InlineEdits(unsigned seed) : random_(seed) {}

  std::string source() {
    std::string source;
    for (std::size_t count = below(10) + 1; count > 0; --count) {
      source += scraps[below(std::size(scraps))];
      if (below(2) == 0) source += ' ';
    }
    return std::string(trim(source));
  }
  /// The text with a stretch of it replaced.
  Text edited(const Text& text) {
    const std::size_t begin = boundary(text, below(text.string().size() + 1));
    const std::size_t end = boundary(text, std::min(begin + below(8), text.string().size()));
    Text edited = part(text, 0, begin);
    if (below(3) > 0) {
      const Text added = parseInline(scraps[below(std::size(scraps))]);
      edited.append(below(2) == 0 ? added : Text({{added.string(), {{"em", ""}}}}));
    }
    edited.append(part(text, end, text.string().size()));
    return edited;
  }

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  static std::size_t boundary(const Text& text, std::size_t at) {
    while ((static_cast<unsigned char>(text.string()[at]) & 0xC0) == 0x80) --at;
    return at;
  }
  static Text part(const Text& text, std::size_t begin, std::size_t end) {
    Text part;
    std::size_t at = 0;
    text.forEachRun([&](std::string_view run, const Attributes& style) {
      const std::size_t from = std::clamp(begin, at, at + run.size());
      const std::size_t to = std::clamp(end, from, at + run.size());
      part.append(run.substr(from - at, to - from), style);
      at += run.size();
    });
    return part;
  }

  std::mt19937 random_;
};

/// Whatever is edited, the source says it then; far from the edit nothing changes.
TEST(InlineMarkdown, EditsReadBackAndStayNear) {
  const std::string before = "*a* __b__ [l](u 'T') &copy; \\_ ";
  const std::string behind = " <b>*c*</b> `` d ``  \n[![e](f)](g) *h*";
  const std::string near = "near ";
  for (unsigned seed = 0; seed < 1000; ++seed) {
    InlineEdits edits(seed);
    const std::string source = edits.source();
    const Text text = parseInline(source, LineFeeds::breaks);
    EXPECT_EQ(rewriteInline(source, text, LineFeeds::breaks), source);
    const Text now = edits.edited(text);
    const std::string written = rewriteInline(source, now, LineFeeds::breaks);
    ASSERT_EQ(parseInline(written, LineFeeds::breaks), now) << "seed " << seed << "\n"
                                                            << source << "\n"
                                                            << written;
    ASSERT_EQ(trim(written), written) << "seed " << seed;
    Text around = parseInline(before + near);
    around.append(now);
    around.append(parseInline(" near" + behind, LineFeeds::breaks));
    const std::string whole = before + near + source + " near" + behind;
    if (runsOf(parseInline(whole, LineFeeds::breaks)) !=
        runsOf(parseInline(before + near)) + runsOf(text) +
            runsOf(parseInline(" near" + behind, LineFeeds::breaks)))
      continue;  // an open mark in the middle reaches out of it
    const std::string changed = rewriteInline(whole, around, LineFeeds::breaks);
    EXPECT_TRUE(changed.starts_with(before) && changed.ends_with(behind)) << "seed " << seed << "\n"
                                                                          << whole << "\n"
                                                                          << changed;
  }
}

}  // namespace
}  // namespace vell::formats
