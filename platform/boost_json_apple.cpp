// The whole of Boost.JSON.

#include <boost/json/src.hpp>
