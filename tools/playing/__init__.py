"""What the programs that play games of Varn share.

    process   a program that is spoken to line by line, and that never outlives the tool
    rules     chess: positions, legal moves, the notations of moves
    game      a game with its history, and how it stands by the rules
    clock     time controls and the clock of one side
    engines   engines that speak UCI or the xboard protocol, behind one interface
    tool      arguments, folders, jobs and the end of a command-line tool
"""
