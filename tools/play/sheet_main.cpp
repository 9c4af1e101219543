/**
 * kestrin-sheet: arranges pictures on one sheet.
 */
#include "picture.h"

#include "png_file.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    std::string output;
    std::vector<std::string> pictures;
    CLI::App app("Arranges pictures on one sheet, in rows from the top left.", "kestrin-sheet");
    app.add_option("output", output, "The PNG file to write")->required()->type_name("OUT.png");
    app.add_option("pictures", pictures,
                   "The PNG files to show, the first of which gives the "
                   "proportions of all places")
        ->required()
        ->type_name("IN.png");
    CLI11_PARSE(app, argc, argv);

    try {
        kestrin_play::ArgbImage picture = kestrin_tools::ReadPng(pictures.front());
        kestrin_play::ContactSheet sheet(pictures.size(), picture.width, picture.height);
        for (const std::string& file : pictures)
            sheet.Add(kestrin_tools::ReadPng(file));
        kestrin_tools::WritePng(output, sheet.Image());
    } catch (const std::exception& error) {
        std::cerr << "kestrin-sheet: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
