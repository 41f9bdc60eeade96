# The one place that holds the version; the program's banner and the packages take it from here.
set(CORVANE_VERSION 4.97)
