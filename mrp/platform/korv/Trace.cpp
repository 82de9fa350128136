#include "mrp/platform/korv/Trace.h"

#include <cstdio>
#include <cstring>

namespace Korv {

namespace {

void toStandardError( TraceHelper const & handle, U32 level, SourceLocation where,
                      std::string const & text ) {
   char const * slash = std::strrchr( where.file, '/' );
   std::fprintf( stderr, "%s/%u %s:%u %s\n", handle.name(), level, slash ? slash + 1 : where.file,
                 where.line, text.c_str() );
}

TraceSink sink_ = toStandardError;

} // namespace

void traceSinkIs( TraceSink sink ) { sink_ = sink ? sink : toStandardError; }

void traceLine( TraceHelper const & handle, U32 level, SourceLocation where,
                std::string const & text ) {
   sink_( handle, level, where, text );
}

} // namespace Korv
