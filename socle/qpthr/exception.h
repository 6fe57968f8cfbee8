#pragma once

#include "socle/basic/export.h"

#include <exception>

/// The base of every exception that can be cloned to the heap and raised again later.
namespace qpthr {

/// A code and a short text on top of `std::exception`. `what()` is that of `std::exception`; the words are in `text()`
/// and in the accessors of derived classes.
class SOCLE_API QpException : public std::exception {
public:
    /// Copies at most 79 characters of `text`; null counts as the empty text.
    QpException(int code, char const * text) noexcept;
    ~QpException() override;

    /// The name of the class.
    virtual char const * Name() const noexcept = 0;

    /// A number for programs, 0 for none.
    int code() const noexcept { return code_; }
    /// The text, which ends in a zero byte.
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

    /// Throws a copy of this object, of the class whose `Raise` this is.
    [[noreturn]] virtual void Raise() const = 0;
    /// Returns a copy on the heap, which the caller deletes.
    virtual QpClonedException * Clone() const = 0;
};

/// The simplest concrete exception of this line.
class SOCLE_API QpUserException : public QpClonedException {
public:
    using QpClonedException::QpClonedException;
    ~QpUserException() override;

    /// "QpUserException", in derived classes as well.
    char const * Name() const noexcept override;
    /// Throws a copy of this object, as a `QpUserException`.
    [[noreturn]] void Raise() const override;
    /// Returns a copy on the heap, which the caller deletes.
    QpUserException * Clone() const override;
};

} // namespace qpthr
