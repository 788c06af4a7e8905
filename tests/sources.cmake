# The tests of each module, one program for each.

set(frame_tests
    frame/arithmetic_test.cc
    frame/calendar_test.cc
    frame/collection_test.cc
    frame/conversion_test.cc
    frame/date_text_test.cc
    frame/errors_test.cc
    frame/live_trace_posix_test.cc
    frame/live_trace_test.cc
    frame/number_text_test.cc
    frame/patterns_test.cc
    frame/release_test.cc
    frame/settings_posix_test.cc
    frame/settings_test.cc
    frame/text_test.cc
)

set(formatting_tests
    formatting/allocation_test.cc
    formatting/amount_reading_test.cc
    formatting/cardinal_test.cc
    formatting/cheque_words_test.cc
    formatting/date_texts_test.cc
    formatting/lib_fecha_test.cc
    formatting/monto_escrito_test.cc
)

set(evaluator_tests
    evaluator/check_test.cc
    evaluator/dependants_test.cc
    evaluator/evaluate_test.cc
    evaluator/formula_test.cc
    evaluator/formula_variables_test.cc
    evaluator/functions_page_test.cc
    evaluator/functions_test.cc
    evaluator/host_events_test.cc
    evaluator/hostile_input_test.cc
    evaluator/kept_plans_test.cc
    evaluator/lifetime_test.cc
    evaluator/rounding_and_text_test.cc
    evaluator/small_stack_test.cc
    evaluator/symbols_test.cc
    evaluator/trace_test.cc
    evaluator/trie_test.cc
    evaluator/vocabulario_test.cc
)

set(review_tests
    review/findings_test.cc
    review/random_formulas_test.cc
    review/review_test.cc
)

set(export_tests
    export/code_page_test.cc
    export/delimited_test.cc
    export/failure_test.cc
    export/fixed_width_test.cc
    export/properties_test.cc
)

set(flatfile_tests
    flatfile/field_test.cc
    flatfile/file_test.cc
    flatfile/layout_test.cc
    flatfile/memory_posix_test.cc
    flatfile/round_trip_test.cc
)

set(forms_tests
    forms/control_test.cc
    forms/focus_test.cc
    forms/key_filters_test.cc
    forms/late_bound_test.cc
    forms/layout_test.cc
    forms/lifetime_test.cc
    forms/report_parameters_test.cc
    forms/settings_file_test.cc
    forms/tag_string_test.cc
    forms/value_checks_test.cc
)

set(files_tests
    files/attributes_posix_test.cc
    files/attributes_windows_test.cc
    files/command_line_test.cc
    files/paths_test.cc
    files/process_posix_test.cc
    files/process_windows_test.cc
    files/text_file_posix_test.cc
    files/text_file_test.cc
)

set(hosts_tests
    hosts/c_abi_test.cc
    hosts/csv_parser_test.cc
    hosts/description_test.cc
    hosts/factory_test.cc
    hosts/out_of_memory_test.cc
)

# What the tool is asked: hosts/cases/NAME.cases.
set(tool_cases
    call
    check
    describe
    eval
    export
    flat
    help
    review
    selftest
    table
    vocabulary
)
