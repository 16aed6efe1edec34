// From the start of a program to its first paint, seen from outside: by turns the application and the smallest window
// are started, and the X server is asked for a pixel of the window that comes up until that pixel has a colour.
//
// Starting [ROUNDS]

#include "shared/Figures.h"
#include "shared/Measuring.h"
#include "shared/StartedProgram.h"

#include <xcb/xcb.h>

#include <memory>
#include <thread>

namespace
{

template <typename Type>
std::unique_ptr<Type, decltype(&std::free)> owned(Type *reply)
{
    return {reply, &std::free};
}

class Screen
{
public:
    Screen()
    {
        if (xcb_connection_has_error(m_connection) != 0) {
            std::fputs("needs an X server\n", stderr);
            std::exit(2);
        }
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &events);
        xcb_flush(m_connection);
    }

    /// Seconds until a program's window is painted.
    double secondsUntilPainted(const std::vector<std::string> &command)
    {
        forgetEvents();
        const auto start = std::chrono::steady_clock::now();
        const StartedProgram program(command);
        const xcb_window_t window = nextWindow();
        // Asking without a pause would take a core from the program and from the X server.
        while (!isPainted(window))
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

private:
    void forgetEvents()
    {
        while (auto event = owned(xcb_poll_for_event(m_connection))) {
        }
    }

    xcb_window_t nextWindow()
    {
        while (auto event = owned(xcb_wait_for_event(m_connection))) {
            if ((event->response_type & 0x7fU) == XCB_MAP_NOTIFY)
                return reinterpret_cast<const xcb_map_notify_event_t *>(event.get())->window;
        }
        std::abort();
    }

    /// Both windows are light where nothing else is, and the empty screen is black.
    bool isPainted(xcb_window_t window)
    {
        constexpr std::int16_t place = 3;
        const auto image = owned(xcb_get_image_reply(
            m_connection,
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, place, place, 1, 1, ~std::uint32_t{0}),
            nullptr));
        return image && (xcb_get_image_data(image.get())[0] & 0xffU) > 0x80U;
    }

    xcb_connection_t *m_connection = xcb_connect(nullptr, nullptr);
    xcb_window_t m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
};

} // namespace

int main(int argumentCount, char *arguments[])
{
    const int rounds = argumentCount > 1 ? std::atoi(arguments[1]) : 51;
    Screen screen;
    std::vector<double> ours;
    std::vector<double> smallest;
    screen.secondsUntilPainted({TIDEWELL}); // the files are read once
    for (int round = 0; round < rounds; ++round) {
        smallest.push_back(screen.secondsUntilPainted({SMALLEST_WINDOW}));
        ours.push_back(screen.secondsUntilPainted({TIDEWELL}));
    }
    printFigures("starting", {{"ours_ms", median(ours) * 1e3},
                              {"smallest_ms", median(smallest) * 1e3},
                              {"ratio", median(ours) / median(smallest)}});
    return 0;
}
