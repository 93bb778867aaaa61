// The text of demo/schema.sql, built into the generator so that it runs from any folder.
#ifndef VANTOREL_DEMO_SCHEMA_TEXT_H_
#define VANTOREL_DEMO_SCHEMA_TEXT_H_

namespace vantorel::demo {

const char* SchemaSql();

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_SCHEMA_TEXT_H_
