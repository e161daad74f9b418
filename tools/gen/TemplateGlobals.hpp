#pragma once

// The globals velcg-gen gives a template, with their Python types: the
// template reference and the editor stub velcg_template.pyi are written
// from this table (velcg-inspect).

namespace VelCG::gen {

struct TemplateGlobal {
    const char* name;
    const char* pythonType; // as the stub spells it
    const char* description;
};

inline constexpr TemplateGlobal kTemplateGlobals[] = {
    {"model", "CGModel",
     "The model being generated: its systems, types, variable groups, inputs and block hierarchy."},
    {"repository", "VelCGFileRepository",
     "The files the description lists, in its order; `velcg.bridge(repository)` fills and writes them. A "
     "file's "
     "index is its position in `repository.FileList`."},
    {"outputDirectory", "str",
     "Where the template writes files of its own; velcg-gen moves them into the output directory together "
     "with "
     "the files it writes itself, and only once the whole run succeeded."},
    {"options", "dict[str, str]", "The `-D KEY=VALUE` values of the command line (a later KEY wins)."},
    {"data", "Any",
     "The value of the description's optional top-level \"templateData\" field, as Python values (dict, "
     "list, "
     "str, int, float, bool or None)."},
};

} // namespace VelCG::gen
