// kelvo-popup RESULT: shows kelvo-util's result popup on $DISPLAY, as a caller of
// KelvoUtilResultWindow does (Init, MakeWindow, Finish), and returns when it closes.
//
// The set's platform theme holds the popup's styles; Debian's Elementary theme does not, so the
// theme extension built beside this program (kelvo-popup-theme.edj) stands in for them.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include "resultWindow.h"

namespace {

const char *const kThemeFile = "kelvo-popup-theme.edj";

bool ParseResult(const char *text, int &result)
{
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || value < INT_MIN || value > INT_MAX)
        return false;
    result = static_cast<int>(value);
    return true;
}

// The theme extension lies beside the program, in the build tree and where it is installed.
std::string ThemePath()
{
    char self[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof(self) - 1);
    if (length <= 0)
        return kThemeFile;
    const std::string path(self, static_cast<size_t>(length));
    return path.substr(0, path.rfind('/') + 1) + kThemeFile;
}

}  // namespace

int main(int argc, char **argv)
{
    int result = 0;
    if (argc != 2 || !ParseResult(argv[1], result)) {
        std::fprintf(stderr, "usage: kelvo-popup RESULT\n"
                             "  RESULT: 0 dump failed, 1 dump succeeded, 2 restore failed, 3 restore succeeded;\n"
                             "  any other number shows the popup without a text\n");
        return 2;
    }
    const std::string theme = ThemePath();
    if (access(theme.c_str(), R_OK) != 0) {
        std::fprintf(stderr, "kelvo-popup: theme extension %s not readable\n", theme.c_str());
        return 1;
    }

    // Elementary's system modules (power, hostname) look for services on the system bus, which a
    // test machine or container often lacks; the popup needs none of them.
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 0);

    KelvoUtilResultWindow::Init(argc, argv);
    elm_theme_extension_add(nullptr, theme.c_str());
    KelvoUtilResultWindow::MakeWindow(static_cast<KelvoUtilResultWindow::eOperation>(result));
    KelvoUtilResultWindow::Finish();
    return 0;
}
