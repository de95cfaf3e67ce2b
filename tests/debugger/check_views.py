"""Run by gdb: stops the program in Look() and compares what the views show with the cases of a file: an expression or
a command (after a colon) in a line of its own, followed by the indented text that it prints.

    gdb -nx -batch -ex "python cases = 'FILE'; start = 'COMMAND'" -x check_views.py PROGRAM
"""
import gdb


def read_cases(path):
    found = []
    with open(path, encoding="utf-8") as file:
        for line in file:
            line = line.rstrip("\n")
            if line.startswith("    "):
                found[-1][1].append(line[4:])
            elif line and not line.startswith("#"):
                found.append((line, []))
    return found


def shown(expression):
    try:
        if expression.startswith(":"):
            return gdb.execute(expression[1:], to_string=True).rstrip("\n")
        return gdb.execute(f"output {expression}", to_string=True)
    except gdb.error as error:
        return f"error: {error}"


def check():
    gdb.execute("set width 0")
    gdb.execute("set confirm off")
    gdb.execute("set breakpoint pending on")
    gdb.execute("break Look")
    for command in start.split(";"):
        gdb.execute(command)
    if gdb.selected_frame().name() != "Look":
        raise gdb.GdbError("the program did not come to Look()")
    wrong = 0
    cases_read = read_cases(cases)
    for expression, expected in cases_read:
        text = shown(expression)
        if text != "\n".join(expected):
            wrong += 1
            print(f"{expression}\n  shows   {text}\n  and not " + "\n".join(expected))
    print(f"{len(cases_read)} expressions, {wrong} shown otherwise")
    gdb.execute("kill")
    return wrong == 0 and len(cases_read) > 0


try:
    good = check()
except Exception as error:
    print(f"failed: {error}")
    good = False
gdb.execute(f"quit {0 if good else 1}")
