#include "socle/io/describe.h"

#include "socle/io/exception.h"
#include "socle/nio/filesystem_exception.h"

#include <string>

namespace io {

namespace {

/// Takes words and path from a message of a failed system call: the words, the path within `open` and `close`, the
/// code.
void split(description & result, narrow_string const & open, narrow_string const & close) {
    result.words = result.message;
    std::size_t const start = result.message.find(open);
    std::size_t const end = result.message.rfind(close + ' ' + std::to_string(result.code) + ' ');
    if (start == narrow_string::npos || end == narrow_string::npos || end < start + open.size())
        return;
    result.words.resize(start);
    result.path = result.message.substr(start + open.size(), end - start - open.size());
}

} // namespace

description describe(std::exception_ptr const & thrown) {
    description result;
    if (!thrown)
        return result;
    try {
        std::rethrow_exception(thrown);
    } catch (exception const & e) {
        result = {e.message(), "", "", e.origin(), e.error()};
        split(result, " \"", "\";");
    } catch (un::exception const & e) {
        result = {e.message(), e.message(), "", e.origin(), e.code()};
    } catch (qpthr::QpException const & e) {
        result = {e.text(), e.text(), "", "", e.code()};
    } catch (nio::filesystem_exception const & e) {
        result = {e.message(), "", "", "", static_cast<int>(e.error())};
        split(result, " (", ")");
    } catch (basic::exception const & e) {
        result = {e.message(), e.message(), "", "", 0};
    } catch (std::exception const & e) {
        result = {e.what(), e.what(), "", "", 0};
    } catch (...) {
        result.message = result.words = "unknown exception";
    }
    return result;
}

} // namespace io
