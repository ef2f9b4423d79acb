# Whether the application is built with updates on, decided when it is
# configured. Sparkle checks an update's signature with the EdDSA public key in
# the bundle's Info.plist (SUPublicEDKey: the base64 text of a 32-byte Ed25519
# key, as Sparkle's generate_keys prints it) and reads the appcast at SUFeedURL;
# with either missing or a key it cannot read, the updater fails to start and
# says "Unable to Check For Updates" at every launch (Sparkle documentation,
# "Basic Setup"). So without a framework, a feed or a key, updates are off; a
# key that is given must decode to 32 bytes or the configuration stops.

# Sets OUT to why KEY is not a base64 Ed25519 public key ("" when it is one).
function(halvora_sparkle_key_problem key out)
    string(STRIP "${key}" key)
    string(LENGTH "${key}" length)
    if(NOT key MATCHES "^[A-Za-z0-9+/]*=?=?$")
        set(${out} "it is not base64 text (letters, digits, '+' and '/', then at most two '=')" PARENT_SCOPE)
        return()
    endif()
    math(EXPR remainder "${length} % 4")
    if(NOT remainder EQUAL 0)
        set(${out} "base64 text comes in groups of four characters; this has ${length}" PARENT_SCOPE)
        return()
    endif()
    set(padding 0)
    if(key MATCHES "==$")
        set(padding 2)
    elseif(key MATCHES "=$")
        set(padding 1)
    endif()
    math(EXPR bytes "${length} / 4 * 3 - ${padding}")
    if(NOT bytes EQUAL 32)
        set(${out} "it decodes to ${bytes} bytes; an Ed25519 public key has 32" PARENT_SCOPE)
        return()
    endif()
    set(${out} "" PARENT_SCOPE)
endfunction()

# Sets ON_OUT to whether updates are on and WHY_OUT to the reason, from the
# Sparkle framework found (empty: none), the feed URL and the public key. Sets
# ERROR_OUT when a key is given but unusable (the caller stops there).
function(halvora_sparkle_updates framework feed key on_out why_out error_out)
    set(${error_out} "" PARENT_SCOPE)
    set(${on_out} OFF PARENT_SCOPE)
    string(STRIP "${key}" key)
    string(STRIP "${feed}" feed)
    if(NOT key STREQUAL "")
        halvora_sparkle_key_problem("${key}" problem)
        if(problem)
            set(${error_out} "HALVORA_SPARKLE_PUBLIC_ED_KEY is not an EdDSA public key: ${problem}. \
Use the public key that Sparkle's generate_keys prints." PARENT_SCOPE)
            return()
        endif()
    endif()
    if(NOT framework)
        set(${why_out} "off: no Sparkle.framework (set SPARKLE_DIR or HALVORA_SPARKLE_FRAMEWORK_DIR)" PARENT_SCOPE)
    elseif(feed STREQUAL "")
        set(${why_out} "off: no appcast (HALVORA_SPARKLE_FEED_URL is empty)" PARENT_SCOPE)
    elseif(key STREQUAL "")
        set(${why_out} "off: no EdDSA public key (HALVORA_SPARKLE_PUBLIC_ED_KEY is empty)" PARENT_SCOPE)
    else()
        set(${on_out} ON PARENT_SCOPE)
        set(${why_out} "on: ${feed}, signed with the given EdDSA key" PARENT_SCOPE)
    endif()
endfunction()
