/// Files, folders, forks and links of both families, made, changed, moved and deleted at random in a scratch folder,
/// which after each step has to hold just what a model of it holds.

#include "fuzz/support/feed.h"
#include "socle/io/directory.h"
#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/nio/apple_double_internal.h"
#include "socle/nio/directory.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/move.h"
#include "tests/support/scratch.h"

#include <cctype>
#include <filesystem>
#include <map>
#include <vector>

namespace {

namespace fs = std::filesystem;
using fuzz::check;
using fuzz::refusal;
using fuzz::refuses;

enum class kind { file, folder, link };

struct node {
    kind what;
    std::string bytes = {};
};

constexpr auto join = [](std::string const & folder, std::string const & leaf) {
    return folder.empty() ? leaf : folder + '/' + leaf;
};
std::string parent_of(std::string const & path) {
    auto const at = path.rfind('/');
    return at == path.npos ? "" : path.substr(0, at);
}
std::string leaf_of(std::string const & path) { return path.substr(path.rfind('/') + 1); }
std::string sidecar_of(std::string const & path) { return join(parent_of(path), "._" + leaf_of(path)); }
void require(bool possible) {
    if (!possible)
        throw refusal();
}
std::string normal(std::string path) {
    std::replace(path.begin(), path.end(), '?', '_');
    return path;
}

/// The folder, by paths with slashes; the empty one is the folder itself.
class model {
public:
    std::map<std::string, node> nodes;

    bool is(std::string const & path, kind what) const {
        auto const found = nodes.find(path);
        return found != nodes.end() && found->second.what == what;
    }
    bool is_folder(std::string const & path) const { return path.empty() || is(path, kind::folder); }
    bool exists(std::string const & path) const { return path.empty() || nodes.count(path) > 0; }
    /// As the system sees it: a link answers for its target, a folder.
    bool looks_like_folder(std::string const & path) const { return is_folder(path) || is(path, kind::link); }

    std::vector<std::string> children(std::string const & folder) const {
        std::vector<std::string> found;
        for (auto const & [path, each] : nodes)
            if (parent_of(path) == folder)
                found.push_back(path);
        std::sort(found.begin(), found.end(),
                  [](std::string const & a, std::string const & b) { return upper(a) < upper(b); });
        return found;
    }
    void erase_below(std::string const & folder) {
        std::erase_if(nodes, [&](auto const & each) { return each.first.starts_with(folder + '/'); });
    }

    // What the system does.

    bool can_make(std::string const & path) const {
        return path.find('?') == path.npos && !exists(path) && is_folder(parent_of(path));
    }
    bool make_file(std::string const & path, bool overwrite) {
        if (!can_make(path) && !(overwrite && is(path, kind::file)))
            return false;
        nodes[path] = {kind::file};
        return true;
    }
    bool make_folder(std::string const & path) {
        bool const possible = can_make(path);
        if (possible)
            nodes[path] = {kind::folder};
        return possible;
    }
    bool delete_file(std::string const & path) {
        bool const possible = is(path, kind::file) || is(path, kind::link);
        if (possible)
            nodes.erase(path);
        return possible;
    }
    bool delete_folder(std::string const & path) {
        bool const possible = is(path, kind::link) || (is(path, kind::folder) && children(path).empty());
        if (possible)
            nodes.erase(path);
        return possible;
    }
    bool move(std::string const & from, std::string const & to) {
        if (!exists(from) || (from != to && (!can_make(to) || to.starts_with(from + '/'))))
            return false;
        std::map<std::string, node> moved;
        for (auto const & [path, each] : nodes) {
            bool const goes = path == from || path.starts_with(from + '/');
            moved[goes ? to + path.substr(from.size()) : path] = each;
        }
        nodes = std::move(moved);
        return true;
    }

    // What the io family does.

    std::string unique(std::string const & path) const {
        auto const leaf = leaf_of(path);
        auto const stop = std::min(leaf.find('.'), leaf.size());
        for (int i = 0;; ++i) {
            auto const number = i == 0 ? "" : '_' + std::to_string(i);
            auto const candidate = join(parent_of(path), leaf.substr(0, stop) + number + leaf.substr(stop));
            if (!exists(candidate))
                return candidate;
        }
    }
    /// Gives the path of the file afterwards.
    std::string create_fork(std::string path, std::string const & suffix, bool overwrite) {
        if (make_file(path + suffix, overwrite))
            return path;
        auto const safe = normal(path);
        if (safe != path)
            path = exists(safe + suffix) ? unique(safe) : safe;
        else
            throw refusal();
        require(make_file(path + suffix, false));
        return path;
    }
    std::string create_folder(std::string const & path) {
        if (exists(path) || make_folder(path))
            return path;
        auto const safe = normal(path);
        auto const changed = safe != path ? unique(safe) : path;
        require(make_folder(changed));
        return changed;
    }
    void create_with_parent(std::string const & path) {
        if (!exists(path))
            create_folder(parent_of(path));
        create_folder(path);
    }
    void create_with_all_parents(std::string const & path, bool overwrite) {
        std::vector<std::string> missing(1, parent_of(path));
        for (auto above = parent_of(missing.back()); !exists(above); above = parent_of(above))
            missing.push_back(above);
        for (; !missing.empty(); missing.pop_back())
            create_folder(missing.back());
        create_fork(path, "", overwrite);
    }
    bool shows(std::string const & path) const {
        auto const base = path.substr(0, path.size() - std::min<std::size_t>(5, path.size()));
        auto const leaf = leaf_of(path);
        if (leaf.ends_with(".rsrc"))
            return !exists(base);
        return !leaf.ends_with(".info") || (!exists(base) && !exists(base + ".rsrc"));
    }
    void scan(std::string const & path, io::item::summary & sum) const {
        if (!exists(path)) {
            ++sum.missing;
            return;
        }
        ++sum.items;
        if (looks_like_folder(path))
            ++sum.directories;
        else
            ++sum.files, sum.bytes += nodes.at(path).bytes.size();
        for (auto const & each : children(path))
            if (shows(each))
                scan(each, sum);
    }

    // What the nio family does.

    void make_directory(std::string const & path) {
        if (exists(path) || make_folder(path) || normal(path) == path)
            return;
        require(make_folder(normal(path)));
    }
    void create_parents(std::string const & path) {
        std::vector<std::string> missing;
        for (auto above = parent_of(path); !exists(above); above = parent_of(above))
            missing.push_back(above);
        for (; !missing.empty(); missing.pop_back())
            make_directory(missing.back());
    }
    void create_directory(std::string const & path) {
        if (exists(path))
            return;
        create_parents(path);
        make_directory(path);
    }
    /// Gives the path of the file afterwards, of which the fork is made; none if it is closed.
    template <class Name>
    std::string create_wide(std::string const & path, Name name, bool overwrite, bool overwrite_normal) {
        create_parents(path);
        if (make_file(name(path), overwrite))
            return path;
        if (normal(path) == path)
            return {};
        if (!make_file(name(normal(path)), overwrite_normal))
            throw refusal();
        return normal(path);
    }
    std::vector<std::string> sidecars_of(std::string const & path) const {
        std::vector<std::string> sidecars;
        for (auto name = sidecar_of(path); exists(name); name = sidecar_of(name))
            sidecars.push_back(name);
        return sidecars;
    }
    /// Gives where the file is to be afterwards.
    std::string move_wide(std::string const & from, std::string const & to, bool must) {
        auto const sidecars = sidecars_of(from);
        if (!move(from, to)) {
            if (must)
                throw refusal();
            return normal(to) == to ? to : move_wide(from, normal(to), true);
        }
        auto target = to;
        for (auto const & sidecar : sidecars) {
            target = sidecar_of(target);
            if (move(sidecar, target))
                continue;
            if (must && sidecar == sidecars.front()) {
                move(to, from);
                throw refusal();
            }
            break;
        }
        return to;
    }
    void unlink_file(std::string const & path, bool must) {
        if (exists(sidecar_of(path)))
            unlink_file(sidecar_of(path), must);
        require(delete_file(path) || !must);
    }
    void unlink_folder(std::string const & path, bool must) { require(delete_folder(path) || !must); }
    void unlink(std::string const & path, bool must) {
        if (looks_like_folder(path))
            unlink_folder(path, must);
        else
            unlink_file(path, must);
    }
    void unlink_children(std::string const & path, bool must) {
        for (auto const & each : children(path)) {
            if (leaf_of(each).starts_with("._"))
                continue;
            if (looks_like_folder(each))
                unlink_children(each, must);
            unlink(each, must);
        }
    }

private:
    static std::string upper(std::string text) {
        for (char & c : text)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return text;
    }
};

class world {
public:
    world() {
        fs::create_directories(folder_ / "top");
        fs::create_directory(folder_ / "elsewhere");
        files_.write("elsewhere/kept", "kept");
    }

    void step(fuzz::feed & in) {
        unsigned const choice = in.below(26);
        auto const path = take_path(in);
        bool const flag = in.flag();
        if (through_link(path))
            return;
        auto file = file_of(path);
        io::directory folder(io_path(path));
        nio::directory wide(wide_path(path));
        auto after = path;
        switch (choice) {
        case 0: link(path); break;
        case 1:
        case 2:
        case 3: create_fork(path, in.below(3), flag, in.text()); break;
        case 4: change_data(file.data_fork(), path, in); break;
        case 5: change_data(nio::file(wide_path(path), nio::file::mode_closed), path, in); break;
        case 6:
            model_.delete_file(path);
            attempt(true, [&] { file.unlink(flag); });
            break;
        case 7: attempt(model_.delete_file(path) || !flag, [&] { file.data_fork().unlink(flag); }); break;
        case 8:
        case 9: {
            auto const to = take_path(in);
            if (!through_link(to))
                move(path, to, in.below(3));
            break;
        }
        case 10:
            same([&] { folder.create(flag); }, [&] { after = model_.create_folder(path); });
            check(wide_string(folder.path().full_string()) == wide_path(after));
            break;
        case 11: same([&] { folder.create_with_parents(flag); }, [&] { model_.create_with_parent(path); }); break;
        case 12:
            same([&] { file.create_with_parents(flag); }, [&] { model_.create_with_all_parents(path, flag); });
            file.data_fork().close(true);
            break;
        case 13: attempt(model_.delete_folder(path) || !flag, [&] { folder.unlink(flag); }); break;
        case 14:
            model_.erase_below(path);
            attempt(true, [&] { folder.unlink_children(flag); });
            break;
        case 15:
            model_.erase_below(path);
            attempt(model_.delete_folder(path) || !flag, [&] { folder.unlink_with_children(flag); });
            break;
        case 16: list(flag ? path : parent_of(path)); break;
        case 17: scan(flag ? path : parent_of(path)); break;
        case 18:
        case 19:
        case 20: create_wide(path, choice > 18, flag, in); break;
        case 21:
            if (auto const to = take_path(in); !through_link(to))
                move_wide(path, to, flag);
            break;
        case 22: same([&] { nio::unlink(wide_path(path), flag); }, [&] { model_.unlink(path, flag); }); break;
        case 23: same([&] { wide.create(); }, [&] { model_.create_directory(path); }); break;
        case 24: same([&] { wide.unlink_children(flag); }, [&] { model_.unlink_children(path, flag); }); break;
        default:
            same([&] { wide.unlink_with_children(flag); },
                 [&] {
                     model_.unlink_children(path, flag);
                     model_.unlink_folder(path, flag);
                 });
        }
        compare();
    }

private:
    /// One to three names.
    static std::string take_path(fuzz::feed & in) {
        static char const * const names[] = {"a",     "b",     "a.rsrc", "a.info", "._a",  "d",      "q?",     "q_",
                                             "e.txt", "._._a", "._d",    "q?.txt", "link", "b.rsrc", "d.info", "link"};
        std::string path;
        unsigned const depth = in.below(8);
        for (unsigned i = depth == 0 ? 3 : depth < 4 ? 2 : 1; i > 1; --i)
            path = join(path, in.flag() ? "d" : names[in.below(8)]);
        return join(path, names[in.below(16)]);
    }

    /// What lies behind a link is not the model's. An operation may take the normal form of a name.
    bool through_link(std::string const & path) const {
        if (normal(path) != path && through_link(normal(path)))
            return true;
        for (auto above = parent_of(path); !above.empty(); above = parent_of(above))
            if (model_.is(above, kind::link))
                return true;
        return false;
    }

    wide_string wide_path(std::string const & path) const {
        wide_string wide = root_;
        if (!path.empty())
            wide += u'\\';
        for (char const c : path)
            wide += c == '/' ? u'\\' : char16_t(c);
        return wide;
    }
    any::path io_path(std::string const & path) const { return any::path(any::string(wide_path(path)), true); }
    io::file file_of(std::string const & path) const { return io::file(io_path(path)); }

    /// Both are refused, or both are done.
    template <class Act, class Expect>
    static void same(Act act, Expect expect) {
        bool const wanted_refused = refuses<refusal>(expect);
        bool by_nio = false;
        bool const by_io = refuses<io::exception>([&] { by_nio = refuses<nio::filesystem_exception>(act); });
        check((by_io || by_nio) == wanted_refused);
    }

    static void attempt(bool possible, auto act) {
        same(act, [&] { require(possible); });
    }

    void link(std::string const & path) {
        auto const place = join(parent_of(path), "link");
        if (!model_.can_make(place) || !support::limit_of_links().empty())
            return;
        support::make_link(support::text_of(folder_ / "elsewhere"), folder_ / "top" / place);
        model_.nodes[place] = {kind::link};
    }

    void create_fork(std::string const & path, unsigned which, bool overwrite, std::string const & bytes) {
        auto file = file_of(path);
        io::fork & fork = which == 0 ? file.data_fork() : which == 1 ? file.rsrc_fork() : file.info_fork();
        std::string const suffix = which == 0 ? "" : which == 1 ? ".rsrc" : ".info";
        std::string after = path;
        same(
            [&] {
                check(fork.create(overwrite) == (after != path));
                io::fork_output out(fork);
                out.write(bytes.data(), static_cast<uint32>(bytes.size()));
                fork.close(true);
            },
            [&] {
                after = model_.create_fork(path, suffix, overwrite);
                model_.nodes[after + suffix].bytes = bytes;
            });
        check(wide_string(file.path().full_string()) == wide_path(after));
    }

    void change_data(auto && fork, std::string const & path, fuzz::feed & in) {
        bool const write = in.flag();
        attempt(model_.is(path, kind::file), [&] { write ? fork.open_rw() : fork.open(); });
        if (!model_.is(path, kind::file))
            return;
        change(fork, write, model_.nodes[path].bytes, 0, in);
        if constexpr (requires { fork.close(true); })
            fork.close(true);
    }

    static void resize(io::fork & fork, uint64 size) { fork.resize(size); }
    static void resize(nio::file & file, uint64 size) {
        if (!file.resize(size))
            throw nio::filesystem_exception("cannot resize", u"");
    }

    /// Reads, writes and resizes an open fork beside its bytes, which are those of a file behind a head, and a
    /// position.
    static void change(auto & fork, bool write, std::string & file, std::size_t head, fuzz::feed & in) {
        std::string bytes = file.substr(head);
        std::size_t at = 0;
        check(fork.seek(0));
        for (unsigned steps = in.below(6); steps > 0; --steps) {
            unsigned const choice = in.below(4), number = in.byte();
            if (choice == 0) {
                check(fork.seek(number));
                at = number;
            } else if (choice == 1) {
                char block[256];
                uint32 const got = fork.read(block, number);
                auto const wanted = at < bytes.size() ? bytes.substr(at, number) : "";
                check(std::string(block, got) == wanted);
                at += got;
            } else if (choice == 2) {
                auto const data = in.text();
                same([&] { fork.write(data.data(), static_cast<uint32>(data.size())); },
                     [&] {
                         require(write || data.empty());
                         if (data.empty())
                             return;
                         bytes.resize(std::max(bytes.size(), at + data.size()));
                         bytes.replace(at, data.size(), data);
                         at += data.size();
                     });
            } else {
                same([&] { resize(fork, number); },
                     [&] {
                         at = std::min<std::size_t>(at, number);
                         require(write);
                         bytes.resize(number);
                     });
            }
            check(fork.tell() == at && fork.size() == bytes.size());
        }
        file.replace(head, file.npos, bytes);
    }

    void move(std::string const & path, std::string const & to, unsigned how) {
        io::item item(io_path(path));
        auto const target = how == 0   ? to
                            : how == 1 ? join(parent_of(path), leaf_of(to))
                                       : join(parent_of(to), leaf_of(path));
        attempt(model_.move(path, target), [&] {
            if (how == 0)
                item.move(io_path(to));
            else if (how == 1)
                item.rename(io_path(to).leaf());
            else
                item.move(io::directory(io_path(parent_of(to))));
        });
        check(wide_string(item.path().full_string()) == wide_path(target));
    }

    void list(std::string const & path) {
        if (model_.is(path, kind::link))
            return;
        std::vector<wide_string> found, found_wide, wanted, wanted_wide;
        io::directory folder(io_path(path));
        for (auto const & entry : folder)
            found.push_back(entry.path().full_string());
        for (auto const & entry : nio::directory(wide_path(path)))
            found_wide.push_back(entry);
        for (auto const & each : model_.children(path)) {
            if (model_.shows(each))
                wanted.push_back(wide_path(each));
            if (!leaf_of(each).starts_with("._"))
                wanted_wide.push_back(wide_path(each));
        }
        check(found == wanted && found_wide == wanted_wide);
        check(folder.exists() == model_.exists(path));
    }

    void scan(std::string const & path) {
        io::item item(io_path(path));
        io::item::summary found, wanted;
        item.scan(found);
        model_.scan(path, wanted);
        check(found.items == wanted.items && found.directories == wanted.directories && found.files == wanted.files
              && found.missing == wanted.missing && found.bytes == wanted.bytes);
    }

    /// A file, or its resource fork, which goes into a sidecar.
    void create_wide(std::string const & path, bool rsrc, bool overwrite, fuzz::feed & in) {
        auto const bytes = in.text();
        nio::file file(wide_path(path), nio::file::mode_closed);
        std::string after;
        same(
            [&] {
                rsrc ? file.create_rsrc(true, overwrite) : file.create(overwrite);
                if (file.is_open())
                    file.write(bytes.data(), static_cast<uint32>(bytes.size()));
            },
            [&] {
                auto const name = [&](std::string const & each) { return rsrc ? sidecar_of(each) : each; };
                after = model_.create_wide(path, name, overwrite, overwrite && !rsrc);
                if (after.empty())
                    return;
                auto const head = nio::apple_double::head({});
                model_.nodes[name(after)].bytes = std::string(head.begin(), rsrc ? head.end() : head.begin()) + bytes;
            });
        check(file.is_open() != after.empty());
        if (!rsrc || file.is_open())
            check(file.path() == wide_path(after.empty() ? path : after));
        if (!rsrc || !file.is_open())
            return;
        check(file.tell() == bytes.size() && file.size() == bytes.size());
        file.close();
        file.open_rsrc();
        char block[256];
        check(std::string(block, file.read(block, sizeof block)) == bytes);
        file.close();
        file.open_rsrc_rw();
        auto & sidecar = model_.nodes[sidecar_of(after)].bytes;
        change(file, true, sidecar, sidecar.size() - bytes.size(), in);
    }

    void move_wide(std::string const & path, std::string const & to, bool must) {
        wide_string target = wide_path(to);
        std::string after = to;
        same([&] { nio::move(wide_path(path), target, must); }, [&] { after = model_.move_wide(path, to, must); });
        // Without need to succeed the target is normal even if that fails.
        check(target == wide_path(after) || target == wide_path(normal(to)));
    }

    void compare() const {
        std::size_t count = 0;
        for (auto const & entry : fs::recursive_directory_iterator(folder_ / "top")) {
            auto const path = entry.path().lexically_relative(folder_ / "top");
            auto const found = model_.nodes.find(path.generic_string());
            check(found != model_.nodes.end());
            ++count;
            auto const & [what, bytes] = found->second;
            check(entry.is_symlink() ? what == kind::link : entry.is_directory() == (what == kind::folder));
            if (what != kind::file)
                continue;
            std::ifstream in(entry.path(), std::ios::binary);
            check(std::string(std::istreambuf_iterator<char>(in), {}) == bytes);
        }
        check(count == model_.nodes.size());
        check(fs::file_size(folder_ / "elsewhere" / "kept") == 4);
    }

    scratch files_;
    fs::path folder_ = files_.folder();
    wide_string root_ = files_.path("top");
    model model_;
};

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    world folder;
    for (int steps = 0; steps < 60 && !in.empty(); ++steps)
        folder.step(in);
}
