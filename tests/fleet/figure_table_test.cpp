#include "fleet/figure_table.h"

#include <gtest/gtest.h>

#include <cmath>

namespace fleetwise::testing {
namespace {

TEST(FigureTable, isWrittenByTheRulesOfCsv) {
    const FigureTable table{.title = "t",
                            .headings = {"Tag", "Wert, in \"Punkten\""},
                            .rows = {{{.text = "21.11.2026", .plain = "2026-11-21"},
                                      {.text = "1.234,5", .number = 1234.5}},
                                     {{.text = "zwei\nZeilen"}, {.text = "leer"}},
                                     {{.text = "=HYPERLINK(\"x\")"}, {.text = "-1", .number = -1}},
                                     {{.text = "Übrige"}, {.text = "–", .number = NAN}},
                                     {{}, {.text = "3 Mrd.", .number = 3e9}}}};
    EXPECT_EQ(commaSeparated(table),
              "Tag,\"Wert, in \"\"Punkten\"\"\"\r\n"
              "2026-11-21,1234.5\r\n"
              "\"zwei\nZeilen\",leer\r\n"
              "\"'=HYPERLINK(\"\"x\"\")\",-1\r\n"
              "Übrige,\r\n"
              ",3000000000\r\n");
}

}  // namespace
}  // namespace fleetwise::testing
