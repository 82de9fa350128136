#include "command/report/AttributeRows.h"

namespace Command {

namespace {

bool sharesRow( Mrp::MrpApplication application, Report::Attribute const & last,
                Report::Attribute const & next ) {
   return next.interface == last.interface && next.attributeType == last.attributeType &&
          next.applicantState == last.applicantState &&
          next.registrarState == last.registrarState && next.committed == last.committed &&
          valueFields( application, last.attributeType, last.value ).size() == 1 &&
          !next.value.empty() &&
          nextValue( application, last.attributeType, last.value ) == next.value;
}

} // namespace

std::vector< AttributeRow > attributeRows( Mrp::MrpApplication application,
                                           std::vector< Report::Attribute > const & attributes ) {
   std::vector< AttributeRow > rows;
   for ( std::size_t i = 0; i < attributes.size(); ++i ) {
      Report::Attribute const & first = attributes[i];
      while ( i + 1 < attributes.size() &&
              sharesRow( application, attributes[i], attributes[i + 1] ) ) {
         ++i;
      }
      rows.push_back(
         { &first, &attributes[i],
           rangeFields( application, first.attributeType, first.value, attributes[i].value ) } );
   }
   return rows;
}

} // namespace Command
