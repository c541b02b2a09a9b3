#pragma once

#include "outline_path/rules.h"

// The grammar of outline paths, from the characters up to the whole text.
//
// Binary levels are right-recursive: an operand, then perhaps a tail: an operator and a whole expression of
// the same level. Every alternative but one is told apart by what it begins with. The exception is the
// bracket, which opens a group of paths, of predicates or of values, and a value may begin a comparison:
//
//  - Where a path or a value may stand the path is tried first. A group that failed at a place is not tried
//    there again (`Once`), so that nested brackets are read once for each kind.
//  - A comparison is tried only where a relation follows its first value (`WhereRelationFollows`), which is
//    known without parsing that value: its operands are skipped, bracketed ones in one stride.
//  - "/" divides where a value is read and what may be divided by follows, which a bare word, "*" or an axis
//    is not. Otherwise it begins the next step; so it does where no relation follows, as no comparison is
//    tried there.

namespace vell::outline_path::grammar {

using namespace tao::pegtl;
using namespace rules;

// clang-format off

// Blanks, names, words
struct Blank          : one<' ', '\t', '\n', '\v', '\f', '\r'> {};
struct Blanks         : plus<Blank> {};
struct OptionalBlanks : star<Blank> {};
struct KeywordEnd     : Blanks {};

struct NameParser          : Token<nameLength> {};
struct UnquotedInnerParser : WordThat<isUnquotedWord> {};
struct UnquotedParser      : seq<UnquotedInnerParser> {};

// Strings
struct StringOpen              : one<'"'> {};
struct StringClose             : one<'"'> {};
struct ControlCharacter       : range<'\0', '\x1F'> {};
struct UnescapedString         : plus<not_at<ControlCharacter>, not_one<'"', '\\'>> {};
struct EscapeLetter            : one<'"', '\\', '/', 'b', 'f', 'n', 'r', 't'> {};
struct EscapedSingleChar       : seq<one<'\\'>, EscapeLetter> {};
struct HighSurrogate           : seq<one<'d', 'D'>, one<'8', '9', 'a', 'b', 'A', 'B'>, rep<2, xdigit>> {};
struct LowSurrogate            : seq<one<'d', 'D'>, ranges<'c', 'f', 'C', 'F'>, rep<2, xdigit>> {};
struct LowSurrogateEscape      : seq<string<'\\', 'u'>, LowSurrogate> {};
struct SurrogatePair           : seq<HighSurrogate, LowSurrogateEscape> {};
struct HexDigits               : rep<4, xdigit> {};
struct NoLowSurrogate          : not_at<LowSurrogate> {};
struct CodeUnit                : seq<not_at<HighSurrogate>, NoLowSurrogate, HexDigits> {};
struct LiteralUnicodeCodePoint : seq<string<'\\', 'u'>, sor<CodeUnit, SurrogatePair>> {};
struct JSONString              : seq<StringOpen, star<sor<UnescapedString, EscapedSingleChar, LiteralUnicodeCodePoint>>, StringClose> {};

// Values
struct PathExpressionParser;
struct ValueExpressionParser;

struct NumberParser  : WordThat<isFiniteNumber> {};
struct BooleanParser : WordThat<isBoolean> {};
struct NullParser    : WordThat<isNull> {};
struct LiteralParser : seq<JSONString> {};

struct AttributeSigil  : one<'@'> {};
struct AttributeName   : NameParser {};
struct AttributeParser : seq<AttributeSigil, AttributeName> {};

struct VariableSigil  : one<'$'> {};
struct VariableName   : NameParser {};
struct VariableParser : seq<VariableSigil, VariableName> {};

struct FunctionName       : Token<functionNameLength> {};
struct FunctionOpen       : one<'('> {};
struct FunctionClose      : one<')'> {};
struct ArgumentComma      : one<','> {};
struct ArgumentEnd        : seq<OptionalBlanks, one<',', ')'>> {};
struct PathArgumentParser : seq<PathExpressionParser, at<ArgumentEnd>> {};
struct ArgumentParser     : sor<PathArgumentParser, ValueExpressionParser> {};
struct Arguments          : list<ArgumentParser, ArgumentComma, Blank> {};
struct FunctionCallParser : seq<FunctionName, FunctionOpen, Once<Construct::functionCall, Deeper<OptionalBlanks, opt<Arguments>>, OptionalBlanks, FunctionClose>> {};

struct PrimaryExprParser : sor<AttributeParser, VariableParser, LiteralParser, NumberParser, BooleanParser, NullParser, FunctionCallParser, UnquotedParser> {};

struct ValueGroupOpen             : one<'('> {};
struct ValueGroupClose            : one<')'> {};
struct ValueExpressionGroupParser : seq<ValueGroupOpen, Once<Construct::valueGroup, OptionalBlanks, Deeper<ValueExpressionParser>, OptionalBlanks, ValueGroupClose>> {};

struct ValueExpressionUnaryParser;
struct MinusSign                  : Spelled<UnaryOp::negate> {};
struct UnaryOpParser              : seq<MinusSign> {};
struct Negation                   : seq<UnaryOpParser, Deeper<ValueExpressionUnaryParser>> {};
struct ValueExpressionUnaryParser : sor<Negation, ValueExpressionGroupParser, PrimaryExprParser> {};

struct Times                               : Spelled<MultiplicativeOp::multiply> {};
struct Over                                : Spelled<MultiplicativeOp::divide> {};
struct Divisor                             : Before<isDivisor> {};
struct MultiplicativeOpParser              : sor<seq<Times, OptionalBlanks>, seq<Over, OptionalBlanks, Divisor>> {};
struct MultiplicativeOperand;
struct MultiplicativeTail                  : seq<OptionalBlanks, MultiplicativeOpParser, Deeper<MultiplicativeOperand>> {};
struct ValueExpressionMultiplicativeParser : seq<ValueExpressionUnaryParser, opt<MultiplicativeTail>> {};
struct MultiplicativeOperand               : seq<ValueExpressionMultiplicativeParser> {};

struct Plus                          : Spelled<AdditiveOp::add> {};
struct Minus                         : Spelled<AdditiveOp::subtract> {};
struct AdditiveOpParser              : sor<Plus, Minus> {};
struct AdditiveOperand;
struct AdditiveTail                  : seq<OptionalBlanks, AdditiveOpParser, OptionalBlanks, Deeper<AdditiveOperand>> {};
struct ValueExpressionAdditiveParser : seq<ValueExpressionMultiplicativeParser, opt<AdditiveTail>> {};
struct AdditiveOperand               : seq<ValueExpressionAdditiveParser> {};

struct ValueExpressionParser : seq<ValueExpressionAdditiveParser> {};

// Predicates
struct PredicateExpressionParser;
struct PredicateExpressionOrParser;
struct PredicateExpressionAndParser;
struct PredicateExpressionTightParser;

struct RelationSign           : Token<relationLength> {};
struct RelationOpParser       : seq<RelationSign> {};
struct RelationModifierOpen   : one<'['> {};
struct RelationModifierLetter : Token<relationModifierLength> {};
struct LocaleAware            : one<localeAwareLetter> {};
struct RelationModifierClose  : one<']'> {};
struct RelationModifierSign   : seq<RelationModifierOpen, RelationModifierLetter, opt<LocaleAware>, RelationModifierClose> {};
struct RelationModifierParser : seq<RelationModifierSign> {};
struct RelationParser         : seq<RelationOpParser, opt<RelationModifierParser>> {};

struct LeftValue                           : seq<ValueExpressionAdditiveParser> {};
struct RightValue                          : seq<ValueExpressionAdditiveParser> {};
struct ComparedValues                      : seq<LeftValue, OptionalBlanks, RelationParser, OptionalBlanks, RightValue> {};
struct PredicateExpressionComparisonParser : WhereRelationFollows<ComparedValues> {};

struct NotKeyword                   : Spelled<PredicateOp::notOf> {};
struct PredicateExpressionNotParser : seq<NotKeyword, KeywordEnd, Deeper<PredicateExpressionTightParser>> {};

struct PredicateGroupOpen             : one<'('> {};
struct PredicateGroupClose            : one<')'> {};
struct PredicateExpressionGroupParser : seq<PredicateGroupOpen, Once<Construct::predicateGroup, OptionalBlanks, Deeper<PredicateExpressionParser>, OptionalBlanks, PredicateGroupClose>> {};

struct PredicateExpressionContainsAttributeParser : seq<AttributeParser> {};
struct PredicateExpressionContainsTextParser      : seq<JSONString> {};

struct PredicateExpressionTightParser : sor<PredicateExpressionNotParser, PredicateExpressionComparisonParser, PredicateExpressionGroupParser,
                                                 PredicateExpressionContainsAttributeParser, PredicateExpressionContainsTextParser> {};

struct AndKeyword                   : Spelled<PredicateOp::andOf> {};
struct AndTail                      : seq<Blanks, AndKeyword, KeywordEnd, Deeper<PredicateExpressionAndParser>> {};
struct PredicateExpressionAndParser : seq<PredicateExpressionTightParser, opt<AndTail>> {};

struct OrKeyword                   : Spelled<PredicateOp::orOf> {};
struct OrTail                      : seq<Blanks, OrKeyword, KeywordEnd, Deeper<PredicateExpressionOrParser>> {};
struct PredicateExpressionOrParser : seq<PredicateExpressionAndParser, opt<OrTail>> {};

struct PredicateExpressionParser : seq<PredicateExpressionOrParser> {};

// Steps
struct SliceOpen   : one<'['> {};
struct SliceClose  : one<']'> {};
struct SliceColon  : one<':'> {};
struct SliceStart  : Token<integerLength> {};
struct SliceEnd    : Token<integerLength> {};
struct SliceRest   : seq<SliceColon, opt<SliceEnd>> {};
struct SliceBounds : sor<seq<SliceStart, opt<SliceRest>>, SliceRest> {};
struct SliceParser : seq<SliceOpen, SliceBounds, SliceClose> {};

struct AnyTypeTest          : one<'*'> {};
struct NodeType             : Token<nodeTypeLength> {};
struct TypeTestParser       : sor<AnyTypeTest, NodeType> {};
struct StepPredicate        : seq<PredicateExpressionOrParser> {};
struct StepContainsText     : WordThat<isTextWord> {};
struct StepFilterParser     : sor<seq<TypeTestParser, opt<Blanks, StepPredicate>>, StepPredicate, StepContainsText> {};

struct DescendantOrSelfAxis : one<'/'> {};
struct NamedAxis            : Token<namedAxisLength> {};
struct StepAxisParser       : sor<NamedAxis, DescendantOrSelfAxis> {};
struct FirstStepAxis        : seq<NamedAxis> {};

struct StepSeparator     : one<'/'> {};
struct StepParser        : sor<seq<StepAxisParser, opt<StepFilterParser>, opt<SliceParser>>, seq<StepFilterParser, opt<SliceParser>>> {};
struct RelativeFirstStep : seq<FirstStepAxis, opt<StepFilterParser>, opt<SliceParser>> {};
struct FurtherSteps      : star<StepSeparator, StepParser> {};

// Paths
struct AbsoluteMarker     : one<'/'> {};
struct AbsolutePathParser : seq<AbsoluteMarker, opt<StepParser, FurtherSteps>> {};
struct RelativePathParser : seq<RelativeFirstStep, FurtherSteps> {};
struct PathParser         : sor<AbsolutePathParser, RelativePathParser> {};

struct PathExpressionUnionParser;
struct PathExpresionExceptParser;
struct PathExpressionIntersectParser;

struct PathGroupOpen             : one<'('> {};
struct PathGroupClose            : one<')'> {};
struct PathExpressionGroupParser : seq<PathGroupOpen, Once<Construct::pathGroup, OptionalBlanks, Deeper<PathExpressionParser>, OptionalBlanks, PathGroupClose>> {};

struct IntersectKeyword              : Spelled<SetOp::intersect> {};
struct IntersectTail                 : seq<Blanks, IntersectKeyword, KeywordEnd, Deeper<PathExpressionIntersectParser>> {};
struct PathOperand                   : sor<PathExpressionGroupParser, PathParser> {};
struct PathExpressionIntersectParser : seq<PathOperand, opt<IntersectTail>> {};

struct ExceptKeyword             : Spelled<SetOp::except> {};
struct ExceptTail                : seq<Blanks, ExceptKeyword, KeywordEnd, Deeper<PathExpresionExceptParser>> {};
struct PathExpresionExceptParser : seq<PathExpressionIntersectParser, opt<ExceptTail>> {};

struct UnionKeyword              : Spelled<SetOp::unionOf> {};
struct UnionTail                 : seq<Blanks, UnionKeyword, KeywordEnd, Deeper<PathExpressionUnionParser>> {};
struct PathExpressionUnionParser : seq<PathExpresionExceptParser, opt<UnionTail>> {};

struct PathExpressionParser : seq<PathExpressionUnionParser> {};

// The whole text: a path, or a value that is more than one bare word
struct LoneWord       : Before<isLoneWord> {};
struct EndOfInput     : eof {};
struct TopLevelPath   : seq<PathExpressionUnionParser> {};
struct TopLevelValue  : seq<ValueAllowed, not_at<LoneWord>, ValueExpressionAdditiveParser> {};
struct OutlinePathParser : seq<OptionalBlanks, sor<seq<TopLevelPath, OptionalBlanks, EndOfInput>, seq<TopLevelValue, OptionalBlanks, EndOfInput>>> {};

// clang-format on

}  // namespace vell::outline_path::grammar
