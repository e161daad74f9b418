# velcg_generate(): code generation with velcg-gen as a step of the build.
#
#   velcg_generate(<name>
#     MODEL <description.json> TEMPLATE <template.py>
#     [OUTPUT_DIRECTORY <dir>]        default: ${CMAKE_CURRENT_BINARY_DIR}/<name>
#     [DEFINE <key=value>...]         the template's `options`
#     [SERIALIZE <level>]             the descriptor's level, 0 for none; default 1
#     [STRICT]                        a warning fails the step (velcg-gen --strict)
#     [OUTPUTS_VARIABLE <var>])       receives the generated files
#
# The generated files are the outputs of one custom command, read from the
# description's "files" list when CMake configures (a changed description
# configures again). They depend on the description, the template and,
# through the depfile velcg-gen writes, every module the template imported
# from outside the standard library and every file it read. velcg-gen
# replaces only files whose bytes changed, so with Ninja an edit that leaves
# a file's bytes alone recompiles nothing. A target <name> builds the
# outputs alone.

cmake_policy(PUSH)
# DEPFILE paths are relative to the build directory (CMP0116), and
# generator expressions may name imported targets.
cmake_policy(VERSION 3.20)

function(velcg_generate name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "STRICT" "MODEL;TEMPLATE;OUTPUT_DIRECTORY;OUTPUTS_VARIABLE;SERIALIZE" "DEFINE")
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "velcg_generate(${name}): unexpected arguments: ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  foreach(required MODEL TEMPLATE)
    if(NOT ARG_${required})
      message(FATAL_ERROR "velcg_generate(${name}): ${required} is required")
    endif()
  endforeach()
  if(NOT TARGET velcg::velcg-gen)
    message(FATAL_ERROR "velcg_generate(${name}): velcg-gen (target velcg::velcg-gen) is not available; "
                        "the velcg package was built without its Python templates")
  endif()
  get_filename_component(model "${ARG_MODEL}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
  get_filename_component(template "${ARG_TEMPLATE}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
  if(ARG_OUTPUT_DIRECTORY)
    get_filename_component(out "${ARG_OUTPUT_DIRECTORY}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")
  else()
    set(out "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  endif()
  set(level 1)
  if(DEFINED ARG_SERIALIZE)
    if(NOT ARG_SERIALIZE MATCHES "^-?[0-9]+$")
      message(FATAL_ERROR "velcg_generate(${name}): SERIALIZE takes an integer level, not '${ARG_SERIALIZE}'")
    endif()
    set(level ${ARG_SERIALIZE})
  endif()
  if(NOT EXISTS "${model}")
    message(FATAL_ERROR "velcg_generate(${name}): the model description '${model}' does not exist")
  endif()

  # The file list, from the description.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${model}")
  file(READ "${model}" description)
  string(JSON count ERROR_VARIABLE error LENGTH "${description}" files)
  if(error)
    string(JSON type ERROR_VARIABLE typeError TYPE "${description}" files)
    if(NOT typeError OR NOT typeError MATCHES "not found")
      message(FATAL_ERROR "velcg_generate(${name}): cannot read the \"files\" list of '${model}': ${error}")
    endif()
    set(count 0)
  endif()
  set(outputs "")
  if(count GREATER 0)
    math(EXPR last "${count} - 1")
    foreach(i RANGE ${last})
      string(JSON file ERROR_VARIABLE error GET "${description}" files ${i} name)
      if(error OR file STREQUAL "" OR file MATCHES "[/\\\\:]" OR file MATCHES "^\\.\\.?$")
        message(FATAL_ERROR "velcg_generate(${name}): '${model}': /files/${i}/name must be a plain file name "
                            "inside the output directory (got '${file}')")
      endif()
      list(APPEND outputs "${out}/${file}")
    endforeach()
  endif()
  if(NOT level LESS 1)
    list(APPEND outputs "${out}/codedescriptor.strata")
  endif()

  set(strict "")
  if(ARG_STRICT)
    set(strict --strict)
  endif()

  set(defines "")
  foreach(define IN LISTS ARG_DEFINE)
    if(NOT define MATCHES "^[^=]+=")
      message(FATAL_ERROR "velcg_generate(${name}): DEFINE takes key=value, not '${define}'")
    endif()
    list(APPEND defines -D "${define}")
  endforeach()

  # The manifest is the first output: it names every file the run generated
  # and is the target of the depfile.
  set(manifest "${out}/.velcg-gen-manifest")
  set(depfile "${CMAKE_CURRENT_BINARY_DIR}/${name}.velcg-gen.d")
  add_custom_command(OUTPUT "${manifest}" ${outputs}
    COMMAND ${CMAKE_COMMAND} -E env VEL_FEATURE_VelCGDirectEmitSerialize=${level}
            $<TARGET_FILE:velcg::velcg-gen> "${model}" "${template}" -o "${out}" --depfile "${depfile}" --quiet
            ${strict} ${defines}
    DEPENDS "${model}" "${template}" $<TARGET_FILE:velcg::velcg-gen>
    DEPFILE "${depfile}"
    COMMENT "Generating ${name} from ${ARG_MODEL} with ${ARG_TEMPLATE}"
    VERBATIM)
  add_custom_target(${name} DEPENDS "${manifest}" ${outputs})
  if(ARG_OUTPUTS_VARIABLE)
    set(${ARG_OUTPUTS_VARIABLE} ${outputs} PARENT_SCOPE)
  endif()
endfunction()

cmake_policy(POP)
