// The order in which the module's objects of static storage come into being.
//
// The module has no start call: meta types, commands, self-checks, units and deferred initialisers
// register themselves while it loads, and hosts rely on the order.  Every namespace-scope object
// that takes part is defined with the macro of its step:
//
//     TextCmdExpressionsParse s_parse VN_LOAD_EXPRESSION_COMMANDS;
//
// Objects of one step that stand in one source file are made in the order of their lines; the
// objects of one step must therefore stand in one file.

#ifndef VN_SERVER_COMMONDATA_ADDIN_LOADORDER_H
#define VN_SERVER_COMMONDATA_ADDIN_LOADORDER_H

#define VN_LOAD_STEP(number) __attribute__((init_priority(1000 + (number))))

#define VN_LOAD_CHANGE_SUMMARIES VN_LOAD_STEP(5)
#define VN_LOAD_ASSET_META_TYPES VN_LOAD_STEP(10)
#define VN_LOAD_ADD_IN VN_LOAD_STEP(20)
#define VN_LOAD_ADD_IN_SELF_CHECK VN_LOAD_STEP(30)
#define VN_LOAD_EXPRESSION_TABLES VN_LOAD_STEP(40)
#define VN_LOAD_EXPRESSION_COMMANDS VN_LOAD_STEP(50)
#define VN_LOAD_CONSTANT_UNITS VN_LOAD_STEP(60)
#define VN_LOAD_EXPRESSION_SELF_CHECKS VN_LOAD_STEP(70)
#define VN_LOAD_MANAGED_META_TYPES VN_LOAD_STEP(80)
#define VN_LOAD_MASS_PROPERTIES VN_LOAD_STEP(90)
#define VN_LOAD_NAMED_VIEWS VN_LOAD_STEP(100)
#define VN_LOAD_UNITS VN_LOAD_STEP(110)
#define VN_LOAD_UNIT_COMMANDS VN_LOAD_STEP(120)
#define VN_LOAD_UNIT_OPTIONS VN_LOAD_STEP(130)
#define VN_LOAD_UNIT_SYSTEM_META_TYPES VN_LOAD_STEP(140)

#endif
