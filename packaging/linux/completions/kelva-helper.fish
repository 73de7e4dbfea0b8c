complete -c kelva-helper -f
complete -c kelva-helper -l virtual -r -F -d 'Watch the virtual bus with this socket'
complete -c kelva-helper -l help -d 'Print a short help'
complete -c kelva-helper -l version -d 'Print the version'
