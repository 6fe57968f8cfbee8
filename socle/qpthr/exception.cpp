#include "socle/qpthr/exception.h"

#include <cstring>

namespace qpthr {

QpException::QpException(int code, char const * text) noexcept : code_(code), text_{} {
    if (text)
        std::strncpy(text_, text, sizeof text_ - 1);
}

QpException::~QpException() = default;

QpClonedException::~QpClonedException() = default;

QpUserException::~QpUserException() = default;

char const * QpUserException::Name() const noexcept { return "QpUserException"; }

void QpUserException::Raise() const { throw QpUserException(*this); }

QpUserException * QpUserException::Clone() const { return new QpUserException(code(), text()); }

} // namespace qpthr
