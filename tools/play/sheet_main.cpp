/**
 * kestrin-sheet: arranges pictures on one sheet.
 */
#include "command_line.h"
#include "picture.h"

#include "png_file.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace {

int MakeSheet(int argc, char** argv)
{
    std::string output;
    std::vector<std::string> pictures;
    CLI::App app("Arranges pictures on one sheet, in rows from the top left.", "kestrin-sheet");
    app.add_option("output", output, "The PNG file to write")->required()->type_name("OUT.png");
    app.add_option("pictures", pictures,
                   "The PNG files to show, the first of which gives the proportions of all places")
        ->required()
        ->type_name("IN.png");
    CLI11_PARSE(app, argc, argv);

    const kestrin_play::ArgbImage first = kestrin_tools::ReadPng(pictures.front());
    kestrin_play::ContactSheet sheet(pictures.size(), first.width, first.height);
    for (const std::string& file : pictures)
        sheet.Add(kestrin_tools::ReadPng(file));
    kestrin_tools::WritePng(output, sheet.Image());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    return kestrin_tools::RunTool("kestrin-sheet", MakeSheet, argc, argv);
}
