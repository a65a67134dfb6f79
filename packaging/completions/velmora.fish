complete -c velmora -l choose -d 'choose files and folders at once'
complete -c velmora -l render -x -a '(__fish_complete_directories)' -d 'write pictures of the window and quit'
complete -c velmora -s V -l version -d 'write the version'
complete -c velmora -s h -l help -d 'write a help'
