#include "io/directory.h"
#include "nio/directory.h"
#include "platform/host.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <unistd.h>

// A tree of sidecars, awkward names and links that lead out of it, walked and removed by both families.

namespace {

namespace fs = std::filesystem;

class tree {
public:
    tree() { made_ = run("--depth 3 >/dev/null"); }
    ~tree() { run("--remove"); }

    bool made() const { return made_; }
    bool outside_untouched() const { return run("--check >/dev/null"); }
    wide_string path(std::string const & name) const { return folder_.path("tree" + name); }

    /// What is left of it, without folders.
    std::set<std::string> rest() const {
        std::set<std::string> names;
        fs::path const root = folder_.host("tree");
        for (auto const & entry : fs::recursive_directory_iterator(root)) {
            if (!entry.is_directory() || entry.is_symlink())
                names.insert(fs::relative(entry.path().parent_path(), root) / entry.path().filename());
        }
        return names;
    }

private:
    bool run(std::string const & arguments) const {
        return std::system(("python3 '" TEST_DATA "/make_tree.py' '" + folder_.folder() + "' " + arguments).c_str())
               == 0;
    }

    scratch folder_;
    bool made_;
};

/// What stays when everything is deleted that lets itself be: as on the native system no read-only file, and for an
/// ordinary user nothing in a folder that he may not write.
std::set<std::string> kept() {
    std::set<std::string> names = {"modes/readonly"};
    if (geteuid() != 0)
        names.insert("modes/rodir/in");
    return names;
}

TEST(tree, shows_files_with_their_forks_in_the_model) {
    tree const made;
    if (!made.made())
        GTEST_SKIP() << "python3 is not there to make the tree";
    std::map<std::string, std::string> const expected = {
        {"/plain", "x z z.RSRC "},
        {"/lone", "w.info y.rsrc "},
        {"/double", "..c .c ._a ._b a "},
        {"/named", "d x.rsrc "},
        {"/nested", "._dir empty l0 "},
        {"/nested/l0", "._f f l1 "},
        {"/nested/l0/l1/l2", "._f f "},
        {"/nested/empty", ""},
        {"/nested/._dir", "inside "},
        {"/links", "a dangling file loop out self up "},
        {"/modes", "program readonly rodir "},
    };
    for (auto const & [name, shown] : expected) {
        io::directory folder(any::path(any::string(made.path(name)), true));
        std::string names;
        for (auto entry = folder.begin(); entry != folder.end(); ++entry)
            names += platform::to_host(entry->path().leaf()) + " ";
        EXPECT_EQ(names, shown) << name;
    }
    io::item root(any::path(any::string(made.path("")), true));
    io::item::summary const sum = root.scan(root);
    EXPECT_EQ(sum.missing, 0u);
    EXPECT_EQ(sum.items, sum.files + sum.directories);
    EXPECT_TRUE(made.outside_untouched());
    io::directory(root.path()).unlink_with_children(false);
    auto left = kept();
    left.insert("named/.rsrc"); // the sidecar of the folder itself, as it were, and so never shown
    EXPECT_EQ(made.rest(), left);
    EXPECT_TRUE(made.outside_untouched());
}

TEST(tree, shows_no_sidecars_in_the_wide_family) {
    tree const made;
    if (!made.made())
        GTEST_SKIP() << "python3 is not there to make the tree";
    std::map<std::string, std::string> const expected = {
        {"/plain", "x x.info x.rsrc z z.RSRC "},
        {"/double", "..c .c a "},
        {"/nested", "empty l0 "},
        {"/nested/l0/l1/l2", "f f.info f.rsrc "},
    };
    for (auto const & [name, shown] : expected) {
        nio::directory const folder(made.path(name));
        std::string names;
        for (auto entry = folder.begin(); entry != folder.end(); ++entry)
            names += platform::to_host(entry->substr(entry->rfind(u'\\') + 1)) + " ";
        EXPECT_EQ(names, shown) << name;
    }
    nio::directory(made.path("")).unlink_with_children(false);
    auto left = kept();
    // What no entry of the walk belongs to.
    left.insert({"double/._b", "nested/._dir/inside"});
    EXPECT_EQ(made.rest(), left);
    EXPECT_TRUE(made.outside_untouched());
}

} // namespace
