"""Shared by the programs that play games with Varn.

    process   a child process driven line by line, which never outlives the tool
    rules     chess: positions, legal moves, the notations of moves
    game      a game with its history and result
    clock     time controls and the clock of one side
    engines   engines that speak UCI or the xboard protocol, behind one interface
    tool      arguments, folders, jobs and exit status of command-line tools
"""
