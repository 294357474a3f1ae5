"""How a check says what it found."""


def report(check, looked_at, problems):
    """Prints one line a problem and a count; returns the exit code."""
    for problem in problems:
        print(f"{check}: {problem}")
    print(f"{check}: {looked_at}, {len(problems)} problems")
    return 1 if problems else 0
