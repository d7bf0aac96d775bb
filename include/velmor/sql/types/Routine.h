// Routine descriptions: overload signatures built by the host and the host interfaces that
// describe its functions, operators and type conversions.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/types/Type.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

/// Whether a routine is deterministic. Stored for the host; the library never reads it.
enum class Determinism : std::uint8_t {
  Deterministic = 0,
  NonDeterministic = 1,
};

/// How the library treats calls of a function. Any number other than 1 and 2 counts as
/// Ordinary, so a host may use further numbers of its own.
enum class FunctionKind : std::int32_t {
  Ordinary = 0,
  Aggregate = 1,      ///< Counted as an aggregate (e.g. forbidden in WHERE).
  ContextOpaque = 2,  ///< Outside a select list its arguments are not checked for context.
};

/// Computes a call's full result type (length, precision, ...) from the converted argument types.
using FullTypeFunction = std::function<std::shared_ptr<Type>(const std::vector<std::shared_ptr<Type>>&)>;

/// One signature of a function. Built by the host, shared through std::shared_ptr, and not to be
/// changed once handed to the library; then safe to share between threads as long as
/// `mFullType` is. Fields are public so that overload resolution and the host's error messages
/// can read them.
///
/// Parameter at position i (from 0), with r required and o optional parameters: required i for
/// i < r; optional i - r for i < r + o; beyond that the last required parameter when variadic
/// (a variadic overload without required parameters repeats nothing), else Fault.
class VELMOR_SQL_API OverloadInfo {
public:
  /// Takes the vectors and the function over by move.
  OverloadInfo(type::PlainType returnType, std::vector<type::PlainType> parameters,
               FullTypeFunction fullType, Determinism determinism = Determinism::Deterministic,
               std::vector<type::PlainType> optionalParameters = {}, bool variadic = false);
  virtual ~OverloadInfo();

  /// The declared type of the parameter at `position`, by the rule above; Fault past the end.
  type::PlainType parameterType(unsigned long long position) const;
  /// parameterType(0) .. parameterType(count - 1).
  std::vector<type::PlainType> parameterTypes(unsigned long long count) const;
  /// At least the required count, and at most required + optional unless variadic.
  bool canTakeParams(unsigned long long count) const;
  /// Exact match: canTakeParams(types.size()) and parameterTypes(types.size()) == types. No
  /// conversion and no wildcard (Contextual matches only a Contextual parameter).
  bool matches(const std::vector<type::PlainType>& types) const;
  /// mFullType(types). An empty mFullType throws std::bad_function_call; whatever the function
  /// throws passes through.
  std::shared_ptr<Type> calcFullType(const std::vector<std::shared_ptr<Type>>& types) const;

  type::PlainType mReturnType;  ///< For the host; overload resolution never reads it.
  bool mVariadic;
  Determinism mDeterminism;     ///< For the host; never read by the library.
  std::vector<type::PlainType> mParameters;
  FullTypeFunction mFullType;
  std::vector<type::PlainType> mOptionalParameters;
};

/// One signature of an operator: exactly mParameters.size() operands, not variadic, no optional
/// operands, and the quantifier it serves (None, or All/Any for a quantified comparison).
class VELMOR_SQL_API OperatorOverloadInfo : public OverloadInfo {
public:
  OperatorOverloadInfo(type::PlainType returnType, std::vector<type::PlainType> parameters,
                       FullTypeFunction fullType, ast::Quantifier quantifier = ast::Quantifier::None);

  /// False when `quantifier` differs from mQuantifier; otherwise OverloadInfo::matches(types).
  bool matches(const std::vector<type::PlainType>& types, ast::Quantifier quantifier) const;
  using OverloadInfo::matches;

  ast::Quantifier mQuantifier;
};

/// A host function: its overloads and kind. Implemented by the host; the library holds one in a
/// std::shared_ptr for the length of one call and calls it on the thread of that call.
class VELMOR_SQL_API FunctionInfo {
public:
  virtual ~FunctionInfo();
  /// The overloads in the host's order (which only orders candidates in errors).
  virtual std::vector<std::shared_ptr<OverloadInfo>> overloads() const = 0;
  virtual FunctionKind kind() const = 0;
};

/// A host operator: its overloads. Implemented by the host, held like FunctionInfo.
class VELMOR_SQL_API OperatorInfo {
public:
  virtual ~OperatorInfo();
  virtual std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const = 0;
};

/// The host's catalogue of routines and conversions. Implemented by the host and borrowed by
/// const reference: the library never copies or owns it, and it must outlive every object that
/// holds it. Called on the thread of the walk that uses it.
class VELMOR_SQL_API GlobalTypeContext {
public:
  virtual ~GlobalTypeContext();
  /// The function called `name`, exactly as written in the statement (case folding is the
  /// host's affair). An empty pointer: no such function.
  virtual std::shared_ptr<FunctionInfo> function(const std::wstring& name) const = 0;
  /// The operator of `code`. An empty pointer: the operator is not supported.
  virtual std::shared_ptr<OperatorInfo> operatorInfo(OperationCode code) const = 0;
  /// May a value of `from` be used where `to` is asked for?
  virtual bool canConvert(type::PlainType from, type::PlainType to) const = 0;
  /// The type `value` becomes when converted to `to` (keeping what the host wants of length
  /// and precision). Called only when the plain types differ, Contextual included.
  virtual std::shared_ptr<Type> convert(const std::shared_ptr<Type>& value, type::PlainType to) const = 0;
  /// Three-way comparison on the host's scale of plain types; only the sign counts, negative
  /// meaning that `a` stands lower than `b`. Must be consistent for stable overload choices.
  virtual int compareTypes(type::PlainType a, type::PlainType b) const = 0;
};

/// What a host's GlobalTypeContext may also be: one whose answers (its functions and operators,
/// their overloads, conversions and the scale of types) stay the same for as long as
/// revision() gives the same number. The checks on a thread then remember the overloads they
/// chose from one statement to the next while the number stays, instead of within one statement
/// only. Take every number from nextRevision(), at construction and after every change, so that
/// no two states of any contexts of the process share one.
class VELMOR_SQL_API RevisedContext {
public:
  virtual ~RevisedContext();
  virtual std::uint64_t revision() const noexcept = 0;
  /// A number that no call gave before in this process; safe from any thread.
  static std::uint64_t nextRevision() noexcept;
};

} // namespace velmor::sql
