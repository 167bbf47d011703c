// What the host gives a phonelet at init: display, services by name, name, formats and locale.
#pragma once

#include <map>
#include <mutex>
#include <string>

class PlatformService;

namespace DisplayAPI {
class Display;
} // namespace DisplayAPI

// Filled by the host before init and kept alive as long as the phonelet; the phonelet keeps a
// reference. Services and the display are borrowed, never owned. The getters may be called from
// any thread; the host may change the locale and formats while the phonelet runs and then tells
// it through localeChanged, dateFormatChanged and timeFormatChanged.
class Context {
public:
    Context() = default;
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    // The application's own display; may be null.
    DisplayAPI::Display* getDisplay() const;
    // The service registered under `name` ("LocalMgmtIfc", "CSTAServiceIfc", ...), null when
    // missing. Callers check the interface they expect with dynamic_cast.
    PlatformService* getService(const std::string& name) const;
    // The name under which the host started this application ("app-name-N" of its configuration).
    std::string getApplicationName() const;
    // "MM/DD/YYYY", "YYYY-MM-DD" or "DD.MM.YYYY".
    std::string getDateFormat() const;
    // "12HR" or "24HR".
    std::string getTimeFormat() const;
    // The phone's language, for example "en" or "de".
    std::string getLocale() const;

    // Host side.
    void setDisplay(DisplayAPI::Display* display);
    // Registers (or with null removes) a service under a name.
    void setService(const std::string& name, PlatformService* service);
    void setApplicationName(const std::string& name);
    void setDateFormat(const std::string& format);
    void setTimeFormat(const std::string& format);
    void setLocale(const std::string& locale);

private:
    mutable std::mutex mMutex;
    DisplayAPI::Display* mDisplay = nullptr;
    std::map<std::string, PlatformService*> mServices;
    std::string mApplicationName;
    std::string mDateFormat = "DD.MM.YYYY";
    std::string mTimeFormat = "24HR";
    std::string mLocale = "en";
};
