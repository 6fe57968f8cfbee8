#pragma once

#include "socle/basic/export.h"

#include <exception>

/// The base of every exception that can be cloned to the heap and raised again later.
namespace qpthr {

/// A code and a short text on top of `std::exception`. `what()` is left as it is: words are in `text()` and in the
/// accessors of the classes below.
class SOCLE_API QpException : public std::exception {
public:
    /// Copies at most 79 characters of `text`; a null `text` gives the empty one.
    QpException(int code, char const * text) noexcept;
    ~QpException() override;

    /// The name of the class.
    virtual char const * Name() const noexcept = 0;

    /// A number for programs, 0 for none.
    int code() const noexcept { return code_; }
    /// Always ends in a zero byte.
    char const * text() const noexcept { return text_; }

private:
    int code_;
    char text_[80];
};

/// An exception that can make a copy of itself and throw one.
class SOCLE_API QpClonedException : public QpException {
public:
    using QpException::QpException;
    ~QpClonedException() override;

    /// Throws a copy of this object by value. Each class says as which class the copy arrives.
    [[noreturn]] virtual void Raise() const = 0;
    /// A new object on the heap, which the caller deletes.
    virtual QpClonedException * Clone() const = 0;
};

/// The plain concrete one: raised again it arrives as a `QpUserException`.
class SOCLE_API QpUserException : public QpClonedException {
public:
    using QpClonedException::QpClonedException;
    ~QpUserException() override;

    /// "QpUserException", in the classes below as well.
    char const * Name() const noexcept override;
    [[noreturn]] void Raise() const override;
    QpUserException * Clone() const override;
};

} // namespace qpthr
