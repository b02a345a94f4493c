! shout: a text in capital letters, and as second output what was wrong with it.
subroutine vexFunction(nlhs, plhs, nrhs, prhs) bind(C, name="vexFunction")
  use ox_fortran
  implicit none
  integer(c_int), value :: nlhs, nrhs
  integer(ox_handle) :: plhs(*), prhs(*)
  character(len=40) :: text ! more is cut
  integer(c_int) :: cut
  integer :: k

  if (nrhs /= 1) call OXERRMSGIDANDTXT("VELTRO:shout:arguments", "shout takes one text.")
  if (OXISCLASS(prhs(1), "char") == 0) &
      call OXERRMSGIDANDTXT("VELTRO:shout:input", &
                            "The input must be char, not " // OXGETCLASSNAME(prhs(1)) // ".")
  cut = OXGETSTRING(prhs(1), text, len(text))
  do k = 1, len(text)
    if (text(k:k) >= 'a' .and. text(k:k) <= 'z') text(k:k) = achar(iachar(text(k:k)) - 32)
  end do
  plhs(1) = OXCREATESTRING(text) ! trailing blanks do not count
  if (nlhs > 1) plhs(2) = OXCREATESTRING(merge("cut     ", "complete", cut == 1))
end subroutine
