# Checks that the client in C calls every export of the list.
file(READ ${CLIENT} client)
file(STRINGS ${LIST} wanted)
foreach(name ${wanted})
  if(NOT client MATCHES "[^A-Za-z_0-9]${name}\\(")
    message(SEND_ERROR "${name} is not called")
  endif()
endforeach()
