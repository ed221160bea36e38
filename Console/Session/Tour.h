// A short tour of what expressions can do.

#ifndef VN_CONSOLE_SESSION_TOUR_H
#define VN_CONSOLE_SESSION_TOUR_H

#include <iosfwd>

namespace Vn::Console {

// Shows a few expressions and what they evaluate to, now and here.
int runTour(std::ostream & out);

} // namespace Vn::Console

#endif
