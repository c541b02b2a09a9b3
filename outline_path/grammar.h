#pragma once

#include "outline_path/rules.h"
#include "outline_path/word_rules.h"

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
//  - "/" divides within a value. To the right of a relation it begins the next step instead, and so it does
//    to the left where no relation follows, as no comparison is tried there.

namespace vell::outline_path::grammar {

using namespace tao::pegtl;
using namespace rules;

// clang-format off

// Blanks, names, words
struct Blank          : one<' ', '\t', '\n', '\v', '\f', '\r'> {};
struct Blanks         : plus<Blank> {};
struct OptionalBlanks : star<Blank> {};
struct KeywordEnd     : Blanks {};

struct NameParser          : Name {};
struct UnquotedInnerParser : WordThat<isUnquotedWord> {};
struct UnquotedParser      : UnquotedInnerParser {};

// Strings
struct StringOpen              : one<'"'> {};
struct StringClose             : one<'"'> {};
struct UnescapedString         : plus<uint8::ranges<0x20, 0x21, 0x23, 0x5B, 0x5D, 0xFF>> {};
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
struct LiteralParser : JSONString {};

struct AttributeSigil  : one<'@'> {};
struct AttributeName   : NameParser {};
struct AttributeParser : seq<AttributeSigil, AttributeName> {};

struct VariableSigil  : one<'$'> {};
struct VariableName   : NameParser {};
struct VariableParser : seq<VariableSigil, VariableName> {};

struct FunctionName       : Entry<functionName> {};
struct FunctionOpen       : one<'('> {};
struct FunctionClose      : one<')'> {};
struct ArgumentComma      : one<','> {};
struct ArgumentEnd        : seq<OptionalBlanks, one<',', ')'>> {};
struct PathArgumentParser : seq<PathExpressionParser, at<ArgumentEnd>> {};
struct ArgumentParser     : sor<PathArgumentParser, ValueExpressionParser> {};
struct Arguments          : List<ArgumentParser, ArgumentComma, Blank> {};
struct FunctionCallParser : Once<Construct::functionCall, FunctionName, FunctionOpen, Deeper<OptionalBlanks, opt<Arguments>>, OptionalBlanks, FunctionClose> {};

struct PrimaryExprParser : sor<AttributeParser, VariableParser, LiteralParser, NumberParser, BooleanParser, NullParser, FunctionCallParser, UnquotedParser> {};

struct ValueGroupOpen             : one<'('> {};
struct ValueGroupClose            : one<')'> {};
struct ValueExpressionGroupParser : Once<Construct::valueGroup, ValueGroupOpen, OptionalBlanks, Deeper<ValueExpressionParser>, OptionalBlanks, ValueGroupClose> {};

struct ValueExpressionUnaryParser;
struct UnaryOpParser              : Spelled<UnaryOp::negate> {};
struct Negation                   : seq<UnaryOpParser, Deeper<ValueExpressionUnaryParser>> {};
struct ValueExpressionUnaryParser : sor<Negation, ValueExpressionGroupParser, PrimaryExprParser> {};

struct Times                               : Spelled<MultiplicativeOp::multiply> {};
struct Over                                : Spelled<MultiplicativeOp::divide> {};
struct Divisor                             : Where<isDivisor> {};
struct MultiplicativeOpParser              : sor<seq<Times, OptionalBlanks>, seq<Over, OptionalBlanks, Divisor>> {};
struct MultiplicativeOperand;
struct MultiplicativeTail                  : Tail<MultiplicativeOperand, OptionalBlanks, MultiplicativeOpParser> {};
struct ValueExpressionMultiplicativeParser : Binary<ValueExpressionUnaryParser, MultiplicativeTail> {};
struct MultiplicativeOperand               : ValueExpressionMultiplicativeParser {};

struct Plus                          : Spelled<AdditiveOp::add> {};
struct Minus                         : Spelled<AdditiveOp::subtract> {};
struct AdditiveOpParser              : sor<Plus, Minus> {};
struct AdditiveOperand;
struct AdditiveTail                  : Tail<AdditiveOperand, OptionalBlanks, AdditiveOpParser, OptionalBlanks> {};
struct ValueExpressionAdditiveParser : Binary<ValueExpressionMultiplicativeParser, AdditiveTail> {};
struct AdditiveOperand               : ValueExpressionAdditiveParser {};

struct ValueExpressionParser : ValueExpressionAdditiveParser {};

// The right side of a comparison, in which "/" does not divide
struct RightMultiplicativeOperand;
struct RightMultiplicativeTail    : Tail<RightMultiplicativeOperand, OptionalBlanks, Times, OptionalBlanks> {};
struct RightMultiplicative        : Binary<ValueExpressionUnaryParser, RightMultiplicativeTail> {};
struct RightMultiplicativeOperand : RightMultiplicative {};
struct RightAdditiveOperand;
struct RightAdditiveTail          : Tail<RightAdditiveOperand, OptionalBlanks, AdditiveOpParser, OptionalBlanks> {};
struct RightAdditive              : Binary<RightMultiplicative, RightAdditiveTail> {};
struct RightAdditiveOperand       : RightAdditive {};

// Predicates
struct PredicateExpressionParser;
struct PredicateExpressionOrParser;
struct PredicateExpressionAndParser;
struct PredicateExpressionTightParser;

struct RelationOpParser       : Entry<relationOp> {};
struct RelationModifierOpen   : one<'['> {};
struct RelationModifierType   : Entry<relationModifier> {};
struct LocaleAware            : one<kLocaleAware> {};
struct RelationModifierClose  : one<']'> {};
struct RelationModifierParser : seq<RelationModifierOpen, RelationModifierType, opt<LocaleAware>, RelationModifierClose> {};
struct RelationParser         : seq<RelationOpParser, opt<RelationModifierParser>> {};

struct LeftValue                           : ValueExpressionParser {};
struct RightValue                          : RightAdditive {};
struct ComparedValues                      : seq<LeftValue, OptionalBlanks, RelationParser, OptionalBlanks, RightValue> {};
struct PredicateExpressionComparisonParser : WhereRelationFollows<ComparedValues> {};

struct NotKeyword                   : Spelled<PredicateOp::notOf> {};
struct PredicateExpressionNotParser : Prefix<PredicateExpressionTightParser, NotKeyword, KeywordEnd> {};

struct PredicateGroupOpen             : one<'('> {};
struct PredicateGroupClose            : one<')'> {};
struct PredicateExpressionGroupParser : Once<Construct::predicateGroup, PredicateGroupOpen, OptionalBlanks, Deeper<PredicateExpressionParser>, OptionalBlanks, PredicateGroupClose> {};

struct PredicateExpressionContainsAttributeParser : seq<AttributeParser> {};
struct PredicateExpressionContainsTextParser      : JSONString {};

struct PredicateExpressionTightParser : Prefixed<PredicateExpressionNotParser, PredicateExpressionComparisonParser, PredicateExpressionGroupParser,
                                                 PredicateExpressionContainsAttributeParser, PredicateExpressionContainsTextParser> {};

struct AndKeyword                   : Spelled<PredicateOp::andOf> {};
struct AndTail                      : Tail<PredicateExpressionAndParser, Blanks, AndKeyword, KeywordEnd> {};
struct PredicateExpressionAndParser : Binary<PredicateExpressionTightParser, AndTail> {};

struct OrKeyword                   : Spelled<PredicateOp::orOf> {};
struct OrTail                      : Tail<PredicateExpressionOrParser, Blanks, OrKeyword, KeywordEnd> {};
struct PredicateExpressionOrParser : Binary<PredicateExpressionAndParser, OrTail> {};

struct PredicateExpressionParser : PredicateExpressionOrParser {};

// Steps
struct SliceOpen   : one<'['> {};
struct SliceClose  : one<']'> {};
struct SliceColon  : one<':'> {};
struct SliceStart  : Entry<sliceInteger> {};
struct SliceEnd    : Entry<sliceInteger> {};
struct SliceRest   : seq<SliceColon, opt<SliceEnd>> {};
struct SliceBounds : sor<seq<SliceStart, opt<SliceRest>>, SliceRest> {};
struct SliceParser : seq<SliceOpen, SliceBounds, SliceClose> {};

struct AnyTypeTest          : one<'*'> {};
struct NodeType             : Entry<nodeType> {};
struct TypeTestParser       : sor<AnyTypeTest, NodeType> {};
struct StepPredicate        : PredicateExpressionParser {};
struct StepContainsText     : WordThat<isTextWord> {};
struct StepFilterParser     : sor<seq<TypeTestParser, opt<Blanks, StepPredicate>>, StepPredicate, StepContainsText> {};

struct DescendantOrSelfAxis : one<'/'> {};
struct NamedAxis            : Entry<namedAxis> {};
struct StepAxisParser       : sor<NamedAxis, DescendantOrSelfAxis> {};
struct FirstStepAxis        : NamedAxis {};

struct StepSeparator     : one<'/'> {};
struct StepParser        : sor<seq<StepAxisParser, opt<StepFilterParser>, opt<SliceParser>>, seq<StepFilterParser, opt<SliceParser>>> {};
struct RelativeFirstStep : seq<FirstStepAxis, opt<StepFilterParser>, opt<SliceParser>> {};
struct FurtherSteps      : star<StepSeparator, StepParser> {};

// Paths
struct AbsoluteMarker     : one<'/'> {};
struct AbsolutePathParser : seq<AbsoluteMarker, opt<StepParser, FurtherSteps>> {};
struct RelativePathParser : seq<RelativeFirstStep, FurtherSteps> {};
struct PathParser         : StepsOf<AbsolutePathParser, RelativePathParser> {};

struct PathExpressionUnionParser;
struct PathExpresionExceptParser;
struct PathExpressionIntersectParser;

struct PathGroupOpen             : one<'('> {};
struct PathGroupClose            : one<')'> {};
struct PathExpressionGroupParser : Once<Construct::pathGroup, PathGroupOpen, OptionalBlanks, Deeper<PathExpressionParser>, OptionalBlanks, PathGroupClose> {};

struct IntersectKeyword              : Spelled<SetOp::intersect> {};
struct IntersectTail                 : Tail<PathExpressionIntersectParser, Blanks, IntersectKeyword, KeywordEnd> {};
struct PathOperand                   : sor<PathExpressionGroupParser, PathParser> {};
struct PathExpressionIntersectParser : Binary<PathOperand, IntersectTail> {};

struct ExceptKeyword             : Spelled<SetOp::except> {};
struct ExceptTail                : Tail<PathExpresionExceptParser, Blanks, ExceptKeyword, KeywordEnd> {};
struct PathExpresionExceptParser : Binary<PathExpressionIntersectParser, ExceptTail> {};

struct UnionKeyword              : Spelled<SetOp::unionOf> {};
struct UnionTail                 : Tail<PathExpressionUnionParser, Blanks, UnionKeyword, KeywordEnd> {};
struct PathExpressionUnionParser : Binary<PathExpresionExceptParser, UnionTail> {};

struct PathExpressionParser : PathExpressionUnionParser {};

// The whole text: a path, or a value that is more than one bare word
struct LoneWord       : seq<star<sor<Blank, one<'('>>>, WordThat<isUnquotedWord>, star<sor<Blank, one<')'>>>, eof> {};
struct EndOfInput     : eof {};
struct TopLevelPath   : PathExpressionParser {};
struct TopLevelValue  : seq<Where<valueIsAllowed>, not_at<LoneWord>, ValueExpressionParser> {};
struct OutlinePathParser : seq<OptionalBlanks, sor<seq<TopLevelPath, OptionalBlanks, EndOfInput>, seq<TopLevelValue, OptionalBlanks, EndOfInput>>> {};

// clang-format on

}  // namespace vell::outline_path::grammar
